// GetDatabases and GetDatabaseInfo of both classes that have them.
#include "admin/manager_fixture.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"
#include "base/failure.h"

namespace kv {
namespace {

using ado::Null;
using fakes::Failing;
using fakes::Rows;

template <class Manager>
struct Names;
template <>
struct Names<CUpgradeDbMgr> {
    static constexpr char kClass[] = "CUpgradeDbMgr";
    static constexpr char kList[] = "exec sp_helpdb";
};
template <>
struct Names<CSynchronizeDbMgr> {
    static constexpr char kClass[] = "CSynchronizeDbMgr";
    static constexpr char kList[] = "use [master] exec sp_helpdb";
};

template <class Manager>
class DatabaseCatalogue : public ManagerTest {
  protected:
    DatabaseCatalogue() { FillPair(manager_); }

    bool Info(const std::string& name = "Batch") {
        return manager_.GetDatabaseInfo(name, data_name_, data_path_, log_name_, log_path_);
    }
    Lines Answers() const { return {data_name_, data_path_, log_name_, log_path_}; }
    void ExpectListFailed() {
        EXPECT_FALSE(manager_.GetDatabases(names_));
        EXPECT_EQ(LogLines(), Lines{std::string(Names<Manager>::kClass) + "::GetDatabases"});
        EXPECT_EQ(ado_.calls.back(), "Close");
    }
    void ExpectInfoFailed(const std::string& name = "Batch") {
        EXPECT_FALSE(Info(name));
        EXPECT_EQ(LogLines(),
                  Lines{std::string(Names<Manager>::kClass) + "::GetDatabaseInfo('" + name + "')"});
        EXPECT_EQ(ado_.calls.back(), "Close");
    }

    Manager manager_;
    std::vector<std::string> names_ = {"left", "over"};
    std::string data_name_;
    std::string data_path_;
    std::string log_name_;
    std::string log_path_;
    static constexpr const char* kList = Names<Manager>::kList;
    static constexpr char kFiles[] = "use [Batch] exec sp_helpfile";
};

using BothClasses = ::testing::Types<CUpgradeDbMgr, CSynchronizeDbMgr>;
TYPED_TEST_SUITE(DatabaseCatalogue, BothClasses);

TYPED_TEST(DatabaseCatalogue, ListsEveryDatabaseInTheServersOrder) {
    this->ado_.Answer(this->kList, Rows({{"tempdb", 1}, {"Batch", 2}, {"master", 3}, {"A b", 4}}));
    EXPECT_TRUE(this->manager_.GetDatabases(this->names_));
    EXPECT_EQ(this->names_, (Lines{"", "tempdb", "Batch", "master", "A b"}));
    EXPECT_EQ(this->ado_.calls, this->StandardCalls(this->ConnectionStringA("master"), {this->kList}));
    EXPECT_TRUE(this->LogLines().empty());
}

TYPED_TEST(DatabaseCatalogue, WorksOnTheSelectedServer) {
    this->manager_.UseServerA(false);
    this->ado_.Answer(this->kList, Rows({{"master"}}));
    EXPECT_TRUE(this->manager_.GetDatabases(this->names_));
    EXPECT_EQ(this->ado_.calls, this->StandardCalls(this->ConnectionStringB("master"), {this->kList}));
}

TYPED_TEST(DatabaseCatalogue, BlanksInANameAreKept) {
    this->ado_.Answer(this->kList, Rows({{" a "}}));
    EXPECT_TRUE(this->manager_.GetDatabases(this->names_));
    EXPECT_EQ(this->names_, (Lines{"", " a "}));
}

TYPED_TEST(DatabaseCatalogue, AMissingRecordsetFailsAndLeavesOnlyElement0) {
    this->ado_.Answer(this->kList, {.no_recordset = true});
    this->ExpectListFailed();
    this->ExpectRaised(Names<TypeParam>::kClass, "Database information could not be found!");
    EXPECT_EQ(this->names_, Lines{""});
}

TYPED_TEST(DatabaseCatalogue, AnEmptyResultFailsAndLeavesOnlyElement0) {
    this->ado_.Answer(this->kList, Rows({}));
    this->ExpectListFailed();
    this->ExpectRaised(Names<TypeParam>::kClass, "No information about available databases could be found!");
    EXPECT_EQ(this->names_, Lines{""});
}

TYPED_TEST(DatabaseCatalogue, AClosedRecordsetFailsWhenItIsRead) {
    this->ExpectListFailed();
    EXPECT_EQ(this->manager_.ErrorCount(), Int16(0));
}

TYPED_TEST(DatabaseCatalogue, ARefusedListKeepsTheServersError) {
    this->ado_.Answer(this->kList, Failing());
    this->ExpectListFailed();
    EXPECT_EQ(this->manager_.ErrorCount(), Int16(1));
}

TYPED_TEST(DatabaseCatalogue, AFailureToOpenLeavesOnlyElement0) {
    this->ado_.Answer("Open", Failing());
    EXPECT_FALSE(this->manager_.GetDatabases(this->names_));
    EXPECT_EQ(this->names_, Lines{""});
}

TYPED_TEST(DatabaseCatalogue, AFailureWhileReadingKeepsTheNamesReadSoFar) {
    this->ado_.Answer(this->kList, Rows({{"one"}, {"two"}, {Null()}, {"four"}}));
    this->ExpectListFailed();
    EXPECT_EQ(this->names_, (Lines{"", "one", "two", ""})); // the element is added before its name is read
}

TYPED_TEST(DatabaseCatalogue, InfoReadsTheFirstTwoRowsTrimmed) {
    this->ado_.Answer(this->kFiles, Rows({{"Batch_Data  ", 1, "  C:\\My data\\Batch.mdf   ", "PRIMARY"},
                                          {" Batch_Log", 2, "C:\\My data\\Batch.ldf ", Null()},
                                          {"Batch_3", 3, "C:\\3.ndf", Null()}}));
    EXPECT_TRUE(this->Info());
    EXPECT_EQ(this->Answers(),
              (Lines{"Batch_Data", "C:\\My data\\Batch.mdf", "Batch_Log", "C:\\My data\\Batch.ldf"}));
    EXPECT_EQ(this->ado_.calls, this->StandardCalls(this->ConnectionStringA("master"), {this->kFiles}));
}

TYPED_TEST(DatabaseCatalogue, ASecondDataFileBeforeTheLogIsTakenForTheLog) {
    this->ado_.Answer(this->kFiles,
                      Rows({{"D1", 1, "C:\\1.mdf"}, {"D2", 3, "C:\\2.ndf"}, {"L", 2, "C:\\3"}}));
    EXPECT_TRUE(this->Info());
    EXPECT_EQ(this->Answers(), (Lines{"D1", "C:\\1.mdf", "D2", "C:\\2.ndf"}));
}

TYPED_TEST(DatabaseCatalogue, ASingleFileFailsWithTheDataStringsFilled) {
    this->ado_.Answer(this->kFiles, Rows({{"D1", 1, "C:\\1.mdf"}}));
    this->ExpectInfoFailed();
    EXPECT_EQ(this->failure_.number, ado::kNoCurrentRecord);
    EXPECT_EQ(this->Answers(), (Lines{"D1", "C:\\1.mdf", "", ""}));
}

TYPED_TEST(DatabaseCatalogue, InfoWithoutARecordsetFails) {
    this->ado_.Answer(this->kFiles, {.no_recordset = true});
    this->ExpectInfoFailed();
    this->ExpectRaised(Names<TypeParam>::kClass, "The database 'Batch' could not be found!");
    EXPECT_EQ(this->manager_.ErrorCount(), Int16(0));
}

TYPED_TEST(DatabaseCatalogue, InfoWithoutARowFails) {
    this->ado_.Answer(this->kFiles, Rows({}));
    this->ExpectInfoFailed();
    this->ExpectRaised(Names<TypeParam>::kClass, "No information about the database 'Batch' could be found!");
    EXPECT_EQ(this->manager_.ErrorCount(), Int16(0));
}

TYPED_TEST(DatabaseCatalogue, InfoFromAClosedRecordsetOrTooFewColumnsFailsWhenItIsRead) {
    this->ExpectInfoFailed();
    EXPECT_EQ(this->failure_.number, ado::kObjectClosed);
    this->ForgetLog();
    this->ado_.Answer(this->kFiles, Rows({{"D1", 1}}));
    this->ExpectInfoFailed();
    EXPECT_EQ(this->failure_.number, ado::kItemNotFound);
}

TYPED_TEST(DatabaseCatalogue, AnUnknownDatabaseIsTheServersError) {
    this->ado_.Answer("use [None] exec sp_helpfile", Failing(-2147217900, "Could not locate entry"));
    this->ExpectInfoFailed("None");
    EXPECT_EQ(this->manager_.ErrorCount(), Int16(1));
}

TYPED_TEST(DatabaseCatalogue, ANameIsPutBetweenTheBracketsUnchanged) {
    this->Info("a]b'c d");
    EXPECT_EQ(this->ado_.Statements(), Lines{"use [a]b'c d] exec sp_helpfile"});
    EXPECT_EQ(this->LogLines(),
              Lines{std::string(Names<TypeParam>::kClass) + "::GetDatabaseInfo('a]b'c d')"});
}

TYPED_TEST(DatabaseCatalogue, ANullPathFails) {
    this->ado_.Answer(this->kFiles, Rows({{"D1", 1, Null()}, {"L", 2, "C:\\3"}}));
    this->ExpectInfoFailed();
    EXPECT_EQ(this->failure_.number, run_time::kInvalidUseOfNull);
    EXPECT_EQ(this->Answers(), (Lines{"D1", "", "", ""}));
}

} // namespace
} // namespace kv
