#include "screencapture/wayland/LocalQuestion.h"

#include <QTemporaryDir>
#include <chrono>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace framora {
namespace {

using std::chrono::milliseconds;

LocalQuestion::Time in(int time) {
    return std::chrono::steady_clock::now() + milliseconds(time);
}

/// Answers one question by its own words, then closes or stays silent.
class Answerer {
public:
    Answerer() {
        m_listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(m_listener, 1), 0);
    }
    ~Answerer() {
        if (m_peer >= 0)
            close(m_peer);
        close(m_listener);
    }
    std::string path() const { return m_folder.filePath(QStringLiteral("socket")).toStdString(); }

    /// The question that was asked.
    std::string accept() {
        m_peer = ::accept(m_listener, nullptr, nullptr);
        std::string question(100, '\0');
        const ssize_t count = read(m_peer, question.data(), question.size());
        question.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return question;
    }
    void answer(const std::string& text) const {
        EXPECT_EQ(write(m_peer, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void finish() {
        close(m_peer);
        m_peer = -1;
    }

private:
    QTemporaryDir m_folder;
    int m_listener;
    int m_peer = -1;
};

TEST(LocalQuestionTest, anAnswerIsReadToItsEnd) {
    Answerer other;
    const LocalQuestion question(other.path(), "how many?");
    ASSERT_TRUE(question.asked());
    EXPECT_EQ(other.accept(), "how many?");
    other.answer("forty");
    other.answer("-two");
    other.finish();
    EXPECT_EQ(question.readToEnd(100, in(5000)), "forty-two");
}

TEST(LocalQuestionTest, aPartIsReadAndTheRestStays) {
    Answerer other;
    const LocalQuestion question(other.path(), "?");
    other.accept();
    other.answer("abcdef");
    char part[4];
    ASSERT_TRUE(question.readExactly(part, 4, in(5000)));
    EXPECT_EQ(std::string(part, 4), "abcd");
    EXPECT_FALSE(question.readExactly(part, 4, in(20))); // two are left
}

TEST(LocalQuestionTest, neitherSilenceNorAFloodIsAnAnswer) {
    Answerer silent;
    const LocalQuestion first(silent.path(), "?");
    silent.accept();
    silent.answer("half");
    EXPECT_EQ(first.readToEnd(100, in(20)), "");
    Answerer loud;
    const LocalQuestion second(loud.path(), "?");
    loud.accept();
    loud.answer(std::string(101, 'x'));
    loud.finish();
    EXPECT_EQ(second.readToEnd(100, in(5000)), "");
}

TEST(LocalQuestionTest, nobodyIsAskedWhereNobodyListens) {
    const std::string tooLong = '/' + std::string(300, 'x');
    for (const std::string& path :
         {std::string(), std::string("/nowhere"), std::string("/dev/null"), tooLong}) {
        const LocalQuestion question(path, "?");
        EXPECT_FALSE(question.asked());
        EXPECT_EQ(question.readToEnd(100, in(1000)), "");
    }
}

} // namespace
} // namespace framora
