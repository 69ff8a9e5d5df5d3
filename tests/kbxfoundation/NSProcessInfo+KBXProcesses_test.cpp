#include <gtest/gtest.h>

#include "NSProcessInfo+KBX.h"
#include "platform/objects/NSException.h"
#include "tests/support/FakeProcessIdentity.h"
#include "tests/support/FakeSystemControl.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

class NSProcessInfoKBXProcesses : public testing::Test {
 protected:
  void expectBrokenPrecondition() {
    RecordingLog log;
    Ref<NSException> raised = raisedBy([] { kbxIsBSDProcessRunning("Finder"_ns); });
    ASSERT_TRUE(raised);
    EXPECT_EQ(text(raised->name()), "NSInternalInconsistencyException");
    EXPECT_EQ(text(raised->reason()), "Invalid parameter not satisfying: err == 0");
    EXPECT_EQ(log.lines(), std::vector<std::string>{"*** Assertion failure in +[NSProcessInfo(KBX) "
                                                    "kbxIsBSDProcessRunning:], "
                                                    "KBXFoundation/Source/NSProcessInfo+KBX:300"});
  }

  FakeSystemControl control;
  FakeProcessIdentity identity;

 private:
  ScopedService<SystemControl> _control{control};
  ScopedService<ProcessIdentity> _identity{identity};
};

TEST_F(NSProcessInfoKBXProcesses, AProcessIsFoundByItsExactName) {
  control.processNames = {"launchd", "Finder", "Grüße"};
  struct Case {
    const char* name;
    bool isRunning;
  };
  for (auto [name, isRunning] : {Case{"launchd", true},
                                 {"Finder", true},
                                 {"Grüße", true},
                                 {"finder", false},
                                 {"Find", false},
                                 {"Finder2", false},
                                 {" Finder", false},
                                 {"", false}})
    EXPECT_EQ(kbxIsBSDProcessRunning(string(name)), isRunning) << name;
}

TEST_F(NSProcessInfoKBXProcesses, ANameOfMoreThan16BytesNeverMatches) {
  control.processNames = {"ExactlySixteen16", "MoreThanSixteen17"};
  EXPECT_TRUE(kbxIsBSDProcessRunning("ExactlySixteen16"_ns));
  EXPECT_FALSE(kbxIsBSDProcessRunning("MoreThanSixteen17"_ns));
  EXPECT_TRUE(kbxIsBSDProcessRunning("MoreThanSixteen1"_ns));
}

TEST_F(NSProcessInfoKBXProcesses, NobodyHasANameThatIsNone) {
  control.processNames = {"Finder", ""};
  EXPECT_FALSE(kbxIsBSDProcessRunning(nullptr));
  EXPECT_FALSE(kbxIsBSDProcessRunning(NSString::stringWithUTF16(u"\xD800")));
}

TEST_F(NSProcessInfoKBXProcesses, AnEmptyListHasNobody) {
  EXPECT_FALSE(kbxIsBSDProcessRunning("Finder"_ns));
}

TEST_F(NSProcessInfoKBXProcesses, OnlyProcessesOfTheRealUserAreAskedFor) {
  identity.user = 1234;
  kbxIsBSDProcessRunning("Finder"_ns);
  EXPECT_EQ(control.sizeQueries, (std::vector<std::vector<int>>{{1, 14, 6, 1234}}));
}

TEST_F(NSProcessInfoKBXProcesses, AListThatGrewMeanwhileIsAskedForAgain) {
  control.processNames = {"launchd", "Finder"};
  control.growths = 20;
  EXPECT_TRUE(kbxIsBSDProcessRunning("another"_ns));
  EXPECT_EQ(control.fetches, 21);
  EXPECT_EQ(control.sizeQueries.size(), 21u);
}

TEST_F(NSProcessInfoKBXProcesses, TheCountIsThatOfTheSecondAnswer) {
  control.processNames = {"launchd", "Finder"};
  control.announcedSize = 100 * sizeof(kinfo_proc);  // the kernel announces more than comes
  EXPECT_TRUE(kbxIsBSDProcessRunning("Finder"_ns));
  EXPECT_FALSE(kbxIsBSDProcessRunning("stale"_ns));
}

TEST_F(NSProcessInfoKBXProcesses, AListWhoseSizeCannotBeHadIsABrokenPrecondition) {
  for (int error : {EPERM, ENOMEM}) {  // lack of memory is no reason to ask again here
    SCOPED_TRACE(error);
    control.sizeError = error;
    expectBrokenPrecondition();
    EXPECT_EQ(control.fetches, 0);
  }
  EXPECT_EQ(control.sizeQueries.size(), 2u);
}

TEST_F(NSProcessInfoKBXProcesses, AListThatCannotBeHadIsABrokenPrecondition) {
  control.fetchError = EPERM;
  expectBrokenPrecondition();
  EXPECT_EQ(control.fetches, 1);
}

TEST_F(NSProcessInfoKBXProcesses, AListForWhichThereIsNoRoomIsABrokenPrecondition) {
  control.announcedSize = SIZE_MAX;
  expectBrokenPrecondition();
  EXPECT_EQ(control.sizeQueries.size(), 1u);
  EXPECT_EQ(control.fetches, 0);
}

}  // namespace
}  // namespace kbx
