#include "platform/desktop/BusApplication.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

using namespace std::chrono_literals;

class BusApplicationTest : public testing::Test {
protected:
    int activations = 0;
    const BusApplication::Handler count = [this](ProgramCommand, const QString&) { ++activations; };
    const QDBusConnection noBus{QStringLiteral("no bus")};
};

TEST_F(BusApplicationTest, theActivationThatABusStartedTheProgramForIsTheStartItself) {
    BusApplication application(noBus, true, count, 1h);
    application.Activate({});
    EXPECT_EQ(activations, 0);
    application.Activate({});
    EXPECT_EQ(activations, 1);
}

TEST_F(BusApplicationTest, anActionOfAStartByTheBusLeavesTheNextActivationToTheUser) {
    BusApplication application(noBus, true, count, 1h);
    application.ActivateAction(QLatin1String(commandName(ProgramCommand::settings)), {}, {});
    application.Activate({});
    EXPECT_EQ(activations, 2);
}

TEST_F(BusApplicationTest, aStartThatNobodyActivatedSwallowsNoLaterClick) {
    BusApplication application(noBus, true, count, 0ms);
    application.Activate({});
    EXPECT_EQ(activations, 1);
}

TEST_F(BusApplicationTest, aProgramThatWasStartedOtherwiseIsActivatedByEveryCall) {
    BusApplication application(noBus, false, count);
    application.Activate({});
    application.Open({}, {});
    EXPECT_EQ(activations, 2);
}

} // namespace
} // namespace framora
