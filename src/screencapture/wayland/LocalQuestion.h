#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace framora {

/// One question to another program over a local socket, asked at once and answered when the answer is wanted.
class LocalQuestion {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Nothing is asked when the path is empty or nobody listens there.
    LocalQuestion(const std::string& path, std::string_view question);
    ~LocalQuestion();
    LocalQuestion(const LocalQuestion&) = delete;
    LocalQuestion& operator=(const LocalQuestion&) = delete;

    bool asked() const { return m_socket >= 0; }
    /// So many bytes of the answer. False when they have not come by then.
    bool readExactly(char* to, std::size_t count, Time end) const;
    /// All that comes until the other side closes; empty when it has not by then, or sends more than `most`
    /// bytes.
    std::string readToEnd(std::size_t most, Time end) const;

private:
    /// Bytes read, 0 at the end of the answer, -1 when nothing came in time.
    long readSome(char* to, std::size_t most, Time end) const;

    int m_socket = -1;
};

} // namespace framora
