#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace framora {

/// One question to sway over the socket that SWAYSOCK names, asked at once and answered when the answer is
/// wanted.
class SwaySocket {
public:
    /// The kinds of question used here, as sway numbers them.
    enum class Question : uint32_t { Tree = 4 };

    explicit SwaySocket(Question question);
    ~SwaySocket();
    SwaySocket(const SwaySocket&) = delete;
    SwaySocket& operator=(const SwaySocket&) = delete;

    /// False when there is no sway to ask.
    bool asked() const { return m_socket >= 0; }
    /// The answer, JSON; empty when it did not come within `patience`. Once only.
    std::string answer(std::chrono::milliseconds patience);

private:
    void disconnect();
    bool readExactly(char* to, std::size_t count, std::chrono::steady_clock::time_point end) const;

    int m_socket = -1;
    Question m_question;
};

} // namespace framora
