// The failures that the steps raise. Their descriptions are neither shown nor logged by a run, so they are
// tested here.
#include "unattended/script_steps.h"

#include "base/failure.h"
#include "scripts/script_mgr_fixture.h"

namespace kv {
namespace {

class ScriptSteps : public ScriptMgrTest {
  protected:
    ScriptSteps() { scripts_.ScriptFolder("S:\\Scripts"); }

    template <class Step>
    static void ExpectRaised(const Step& step, const std::string& description) {
        try {
            step();
            ADD_FAILURE() << "not raised: " << description;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), kProgramFailure);
            EXPECT_EQ(failure.Source(), "modMain");
            EXPECT_EQ(failure.Description(), description);
        }
    }

    CSQLScriptMgr scripts_;
    frmStatus status_;
};

TEST_F(ScriptSteps, AMissingTemplateIsNamed) {
    ExpectRaised([&] { ModifyScript(scripts_, status_, kCreateBatchDatabase); },
                 "The script 'Create Batch Database' could not be modified!");
    ExpectRaised([&] { ModifyScript(scripts_, status_, kInsertDefaultData); },
                 "The script 'Insert Batch Default Data' could not be modified!");
    ExpectRaised([&] { ModifyScript(scripts_, status_, kCreateStoredProcedures); },
                 "The script 'Create Batch Stored Procedures' could not be modified!");
}

TEST_F(ScriptSteps, AMissingToolFails) {
    Version("none.");
    SqlPath("80", "C:\\none");
    const CSQLScriptMgr without_tool;
    ExpectRaised([&] { RequireQueryTool(without_tool, status_); }, "The query tool OSQL.EXE was not found!");
}

} // namespace
} // namespace kv
