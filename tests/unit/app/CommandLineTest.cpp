#include "app/CommandLine.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

CommandLine line(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "framora");
    return CommandLine::of(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLineTest, withoutArgumentsItIsAPlainStart) {
    const CommandLine plain = line({});
    EXPECT_EQ(plain.kind, CommandLine::Kind::run);
    EXPECT_EQ(plain.command, ProgramCommand::activate);
    EXPECT_FALSE(plain.startedByBus);
}

TEST(CommandLineTest, eachCommandHasItsOption) {
    for (const auto& [option, command] :
         {std::pair("--capture-area", ProgramCommand::captureArea),
          std::pair("--capture-window", ProgramCommand::captureWindow),
          std::pair("--settings", ProgramCommand::settings), std::pair("--quit", ProgramCommand::quit)}) {
        const CommandLine parsed = line({option});
        EXPECT_EQ(parsed.kind, CommandLine::Kind::run) << option;
        EXPECT_EQ(parsed.command, command) << option;
        EXPECT_TRUE(CommandLine::helpText().contains(option)) << option;
    }
    EXPECT_EQ(line({"--settings", "--settings"}).command, ProgramCommand::settings);
    EXPECT_TRUE(line({"--started-by-bus"}).startedByBus);
}

TEST(CommandLineTest, helpAndVersionComeBeforeEverythingElse) {
    EXPECT_EQ(line({"--help"}).kind, CommandLine::Kind::help);
    EXPECT_EQ(line({"-h"}).kind, CommandLine::Kind::help);
    EXPECT_EQ(line({"--capture-area", "--version"}).kind, CommandLine::Kind::version);
}

TEST(CommandLineTest, whatIsUnknownOrTooMuchIsNamed) {
    for (const char* wrong : {"--fly", "capture-area", "--activate", "--", "-x", ""}) {
        const CommandLine parsed = line({wrong});
        EXPECT_EQ(parsed.kind, CommandLine::Kind::wrong) << wrong;
        EXPECT_TRUE(parsed.complaint.contains(QString::fromLatin1(wrong)));
    }
    EXPECT_EQ(line({"--capture-area", "--capture-window"}).kind, CommandLine::Kind::wrong);
}

TEST(CommandLineTest, aMessageArrivesAsItWasSent) {
    for (const auto command :
         {ProgramCommand::activate, ProgramCommand::captureArea, ProgramCommand::captureWindow,
          ProgramCommand::settings, ProgramCommand::quit}) {
        const CommandMessage sent{command, QStringLiteral("token-1_TIME2")};
        const CommandMessage heard = CommandMessage::decoded(sent.encoded());
        EXPECT_EQ(heard.command, command);
        EXPECT_EQ(heard.activationToken, sent.activationToken);
    }
}

TEST(CommandLineTest, aMessageThatSaysNothingKnownIsAMereStart) {
    for (const char* bytes : {"", "\n", "fly", "fly\ntoken", "\xff\xfe"})
        EXPECT_EQ(CommandMessage::decoded(bytes).command, ProgramCommand::activate) << bytes;
    EXPECT_TRUE(CommandMessage::decoded("settings").activationToken.isEmpty());
    EXPECT_EQ(CommandMessage::decoded("settings").command, ProgramCommand::settings);
}

} // namespace
} // namespace framora
