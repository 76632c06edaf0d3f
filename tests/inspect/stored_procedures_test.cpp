// CViewDataMgr's operations on stored procedures, with a database in memory: the statements, the arrays, the
// values of parameters and the failures.
#include "inspect/inspect_fixture.h"

namespace kv {
namespace {

using ado::Null;
using ado::Variant;
using fakes::AdoAnswer;
using fakes::Failing;
using fakes::Rows;
using fakes::WithErrors;

ado::Parameter Live(const std::string& name, std::int32_t direction = ado::adParamInput) {
    ado::Parameter parameter;
    parameter.Name(name);
    parameter.Direction(direction);
    parameter.Type(3);
    return parameter;
}

AdoAnswer List(std::vector<ado::Parameter> parameters) {
    AdoAnswer answer;
    answer.parameters = std::move(parameters);
    return answer;
}

// ------------------------------------------------------------------ GetStoredProcedures

class GetStoredProcedures : public InspectTest {
  protected:
    bool Run(AdoAnswer answer) {
        ado_.Answer("OpenSchema 16", std::move(answer));
        return manager_.GetStoredProcedures("Batch", procedures_);
    }
    static AdoAnswer Catalogue(const std::vector<Variant>& names) {
        AdoAnswer answer;
        answer.fields = {"PROCEDURE_CATALOG", "PROCEDURE_NAME"};
        for (const Variant& name : names) {
            answer.rows.push_back({"Batch", name});
        }
        return answer;
    }
    static constexpr char kSource[] = "CViewDataMgr::GetStoredProcedures('Batch')";
    Lines procedures_ = {"left", "from before"};
};

TEST_F(GetStoredProcedures, ListsTheCatalogueWithinFiveMinutes) {
    EXPECT_TRUE(Run(Catalogue({"spTwo;1", "spOne;1"})));
    EXPECT_EQ(procedures_, (Lines{"", "spTwo", "spOne"}));
    EXPECT_EQ(ado_.calls, Calls(300, {"OpenSchema 16"}));
}

TEST_F(GetStoredProcedures, NamesAreCutBeforeTheirFirstSemicolon) {
    EXPECT_TRUE(Run(Catalogue({"plain", ";1", "a;b;1", "two;2", ""})));
    EXPECT_EQ(procedures_, (Lines{"", "plain", "", "a", "two", ""}));
}

TEST_F(GetStoredProcedures, ADatabaseWithoutProceduresIsNotAFailure) {
    EXPECT_TRUE(Run(Catalogue({})));
    EXPECT_EQ(procedures_, Lines{""});
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(GetStoredProcedures, TheArrayIsEmptiedBeforeTheConnection) {
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Run({}));
    EXPECT_EQ(procedures_, Lines{""});
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(GetStoredProcedures, ACatalogueThatFailsKeepsTheErrors) {
    EXPECT_FALSE(Run(Failing()));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(ado_.calls.back(), "Close");
}

TEST_F(GetStoredProcedures, WarningsAreCollected) {
    AdoAnswer answer = Catalogue({"spOne;1"});
    answer.errors = WithErrors({-4}).errors;
    EXPECT_TRUE(Run(answer));
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(GetStoredProcedures, ACatalogueWithoutTheNamesFails) {
    EXPECT_FALSE(Run(Rows({{"spOne;1"}})));
    EXPECT_EQ(failure_.number, ado::kItemNotFound);
    EXPECT_EQ(procedures_, (Lines{"", ""})); // the element is added before its name is read
    EXPECT_FALSE(Run(Catalogue({Null()})));
    EXPECT_EQ(failure_.number, run_time::kInvalidUseOfNull);
}

TEST_F(GetStoredProcedures, AClosedRecordsetFailsWhenItIsRead) {
    EXPECT_FALSE(Run({}));
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(GetStoredProcedures, AMissingRecordsetFailsWhenItIsRead) {
    EXPECT_FALSE(Run({.no_recordset = true}));
    EXPECT_EQ(failure_.number, run_time::kObjectVariableNotSet);
    EXPECT_EQ(procedures_, Lines{""});
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(ado_.calls.back(), "Close");
}

// ------------------------------------------------------------------ GetStoredProcedure

class GetStoredProcedure : public InspectTest {
  protected:
    std::string Run(AdoAnswer answer) {
        ado_.Answer("sp_helptext 'spOne'", std::move(answer));
        return manager_.GetStoredProcedure("Batch", "spOne");
    }
    static constexpr char kSource[] = "CViewDataMgr::GetStoredProcedure('Batch', 'spOne')";
};

TEST_F(GetStoredProcedure, JoinsTheRowsWithoutASeparator) {
    EXPECT_EQ(Run(Rows({{"CREATE PROC spOne AS\r\n"}, {"SELECT 1 "}, {"AS one\r\n"}})),
              "CREATE PROC spOne AS\r\nSELECT 1 AS one\r\n");
    EXPECT_EQ(ado_.calls, Calls(300, {"Execute -1 sp_helptext 'spOne'"}));
}

TEST_F(GetStoredProcedure, IsEmptyAndNotAFailureWithoutRows) {
    EXPECT_EQ(Run(Rows({})), "");
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(GetStoredProcedure, AFailureReturnsNoPartOfTheText) {
    EXPECT_EQ(Run(Rows({{"CREATE PROC"}, {Null()}})), "");
    EXPECT_EQ(LogLines(), Lines{kSource});
    ado_.Answer("Close", Failing());
    EXPECT_EQ(Run(Rows({{"CREATE PROC"}})), ""); // the result is set after the close
    EXPECT_EQ(LogLines().size(), 2U);
}

TEST_F(GetStoredProcedure, AClosedRecordsetFailsWhenItIsRead) {
    EXPECT_EQ(Run({}), "");
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(GetStoredProcedure, AMissingRecordsetFailsWhenItIsRead) {
    EXPECT_EQ(Run({.no_recordset = true}), "");
    EXPECT_EQ(failure_.number, run_time::kObjectVariableNotSet);
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(ado_.calls.back(), "Close");
}

TEST_F(GetStoredProcedure, MessagesAreKeptAfterASuccess) {
    AdoAnswer answer = Rows({{"CREATE PROC"}});
    answer.errors = WithErrors({-4}).errors;
    EXPECT_EQ(Run(answer), "CREATE PROC");
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(GetStoredProcedure, TheServersErrorIsCollected) {
    EXPECT_EQ(Run(Failing(-2147217900, "does not exist")), "");
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(GetStoredProcedure, TheNameIsPutIntoTheStatementUnchanged) {
    manager_.GetStoredProcedure("Batch", "O'Neil");
    EXPECT_EQ(ado_.calls.at(5), "Execute -1 sp_helptext 'O'Neil'");
}

// ------------------------------------------------------------------ GetStoredProcedureParameters

const Lines kSetUp = {"Command.ActiveConnection", "Command.CommandText spOne", "Command.CommandType 4",
                      "Command.CommandTimeout 60", "Refresh"};

class GetStoredProcedureParameters : public InspectTest {
  protected:
    GetStoredProcedureParameters() { parameters_.resize(5); }
    bool Run(AdoAnswer refresh) {
        ado_.Answer("Refresh", std::move(refresh));
        return manager_.GetStoredProcedureParameters("Batch", "spOne", parameters_);
    }
    static constexpr char kSource[] = "CViewDataMgr::GetStoredProcedureParameters('Batch', 'spOne')";
    ParameterArray parameters_;
};

TEST_F(GetStoredProcedureParameters, AsksTheServerWithinAMinute) {
    EXPECT_TRUE(Run(List({Live("@RETURN_VALUE", 4), Live("@a")})));
    EXPECT_EQ(ado_.calls, Calls(60, kSetUp));
    ASSERT_EQ(parameters_.size(), 3U);
    EXPECT_EQ(parameters_[0], nullptr);
    EXPECT_EQ(parameters_[1]->Name(), "@RETURN_VALUE");
    EXPECT_EQ(parameters_[2]->Name(), "@a");
}

TEST_F(GetStoredProcedureParameters, EveryFieldIsCopiedAndOutlivesTheCommand) {
    ado::Parameter live = Live("@amount", ado::adParamInputOutput);
    live.Attributes(80);
    live.NumericScale(4);
    live.Precision(19);
    live.Size(12);
    live.Type(131);
    live.Value("12.5");
    EXPECT_TRUE(Run(List({live})));
    const ado::Parameter& copy = *parameters_.at(1); // the command and its connection no longer exist
    EXPECT_EQ(copy.Attributes(), 80);
    EXPECT_EQ(copy.Direction(), 3);
    EXPECT_EQ(copy.Name(), "@amount");
    EXPECT_EQ(copy.NumericScale(), 4);
    EXPECT_EQ(copy.Precision(), 19);
    EXPECT_EQ(copy.Size(), 12);
    EXPECT_EQ(copy.Type(), 131);
    EXPECT_EQ(copy.Value(), Variant("12.5"));
}

TEST_F(GetStoredProcedureParameters, WithoutParametersTheUpperBoundIsZero) {
    EXPECT_TRUE(Run(List({})));
    EXPECT_EQ(parameters_.size(), 1U);
}

TEST_F(GetStoredProcedureParameters, TheArrayIsEmptiedBeforeTheConnection) {
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Run(List({})));
    EXPECT_EQ(parameters_.size(), 1U);
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(GetStoredProcedureParameters, ARefreshThatFailsTakesTheFailurePath) {
    EXPECT_FALSE(Run(Failing()));
    EXPECT_EQ(parameters_.size(), 1U);
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(ado_.calls.back(), "Close");
}

TEST_F(GetStoredProcedureParameters, WarningsOfTheRefreshAreNotCollected) {
    AdoAnswer answer = List({Live("@a")});
    answer.errors = WithErrors({-9}).errors;
    EXPECT_TRUE(Run(answer));
    EXPECT_EQ(manager_.ErrorCount(), Int16(0));
}

TEST_F(GetStoredProcedureParameters, MoreThanASixteenBitCounterCanCountFail) {
    EXPECT_FALSE(Run(List(std::vector<ado::Parameter>(32768))));
    EXPECT_EQ(failure_.number, run_time::kOverflow);
    EXPECT_EQ(parameters_.size(), 32769U); // sized, but still without parameters
    EXPECT_EQ(parameters_[1], nullptr);
}

// ------------------------------------------------------------------ ExecuteStoredProcedure

class ExecuteStoredProcedure : public InspectTest {
  protected:
    ExecuteStoredProcedure() {
        parameters_.resize(1);
        data_.ReDim(1);
        data_.SetName(1, "left from before");
    }
    void Hold(const std::string& name, Variant value, std::int32_t direction = ado::adParamInput) {
        parameters_.push_back(std::make_unique<ado::Parameter>(Live(name, direction)));
        parameters_.back()->Value(std::move(value));
    }
    bool Run(AdoAnswer before, AdoAnswer call, AdoAnswer after) {
        ado_.Answer("Refresh", std::move(before));
        ado_.Answer("Refresh", std::move(after));
        ado_.Answer("call spOne", std::move(call));
        return manager_.ExecuteStoredProcedure("Batch", "spOne", parameters_, data_);
    }
    /// The recorded call, with the values that were passed.
    std::string TheCall() const {
        for (const std::string& call : ado_.calls) {
            if (call.starts_with("call ")) {
                return call;
            }
        }
        return {};
    }
    static AdoAnswer Result() { return Rows({{1, Null()}, {2, "b"}}); }
    const std::vector<Lines> kResult{{"column0", "column1"}, {"1", "(Null)"}, {"2", "b"}};
    const std::vector<Lines> kDataBefore{{"left from before"}};
    static constexpr char kSource[] = "CViewDataMgr::ExecuteStoredProcedure('Batch', 'spOne')";
    ParameterArray parameters_;
    TextTable data_;
};

TEST_F(ExecuteStoredProcedure, RefreshesCallsAndRefreshesAgain) {
    Hold("@a", "5");
    EXPECT_TRUE(Run(List({Live("@a")}), Result(), List({Live("@a")})));
    Lines calls = kSetUp;
    calls.emplace_back("call spOne -1 @a=5");
    calls.emplace_back("Refresh");
    EXPECT_EQ(ado_.calls, Calls(60, calls));
    EXPECT_EQ(Cells(data_), kResult);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(ExecuteStoredProcedure, ValuesArePassedByExactNameWhateverTheDirection) {
    Hold("@b", "two");
    Hold("@A", "other case");
    Hold("@RETURN_VALUE", 7, ado::adParamReturnValue);
    Hold("@c", Null(), ado::adParamOutput);
    Hold("@gone", "ignored");
    Hold("@b", "the second namesake");
    ado::Parameter kept = Live("@kept");
    kept.Value(42);
    EXPECT_TRUE(Run(List({Live("@RETURN_VALUE", 4), Live("@a"), Live("@b"), Live("@c", 2), kept}), Result(),
                    List({})));
    EXPECT_EQ(TheCall(), "call spOne -1 @RETURN_VALUE=7 @a=(Empty) @b=two @c=(Null) @kept=42");
}

TEST_F(ExecuteStoredProcedure, TheValuesAreCopiedBackFromTheSecondRefresh) {
    Hold("@RETURN_VALUE", Variant(), ado::adParamReturnValue);
    Hold("@a", "typed");
    Hold("@both", "in", ado::adParamInputOutput);
    Hold("@dropped", "typed too");
    Hold("@gone", "stays");
    AdoAnswer call = Result();
    call.output = {{"@RETURN_VALUE", 99}, {"@both", "out"}};
    ado::Parameter added = Live("@added");
    EXPECT_TRUE(Run(List({Live("@RETURN_VALUE", 4), Live("@a"), Live("@both", 3), Live("@dropped")}), call,
                    List({Live("@RETURN_VALUE", 4), Live("@a"), Live("@both", 3), added})));
    EXPECT_EQ(parameters_[1]->Value(), Variant(99));
    EXPECT_EQ(parameters_[2]->Value(), Variant("typed"));
    EXPECT_EQ(parameters_[3]->Value(), Variant("out"));
    EXPECT_EQ(parameters_[4]->Value(), Variant("typed too")) << "not in the second list, so not changed";
    EXPECT_EQ(parameters_[5]->Value(), Variant("stays"));
}

TEST_F(ExecuteStoredProcedure, TheSecondRunUsesTheValuesOfTheFirst) {
    Hold("@a", "typed");
    Hold("@both", Variant(), ado::adParamInputOutput);
    AdoAnswer call = Result();
    call.output = {{"@both", "out"}};
    const std::vector<ado::Parameter> list = {Live("@a"), Live("@both", 3)};
    EXPECT_TRUE(Run(List(list), call, List(list)));
    EXPECT_EQ(TheCall(), "call spOne -1 @a=typed @both=(Empty)");
    ado_.calls.clear();
    EXPECT_TRUE(Run(List(list), call, List(list)));
    EXPECT_EQ(TheCall(), "call spOne -1 @a=typed @both=out");
}

TEST_F(ExecuteStoredProcedure, TheArrayCanBeUsedAgain) {
    Hold("@a", "first");
    EXPECT_TRUE(Run(List({Live("@a")}), Result(), List({Live("@a")})));
    parameters_[1]->Value("second");
    ado_.calls.clear();
    EXPECT_TRUE(Run(List({Live("@a")}), Result(), List({Live("@a")})));
    EXPECT_EQ(TheCall(), "call spOne -1 @a=second");
}

TEST_F(ExecuteStoredProcedure, AFailureBeforeTheCallChangesNothing) {
    Hold("@a", "typed");
    ado_.Answer("Open", Failing());
    EXPECT_FALSE(Run(List({}), {}, {}));
    EXPECT_EQ(Cells(data_), kDataBefore);
    ado_.Answer("Refresh", List({})); // three answers are left, which the run did not ask for
    fakes::FakeAdo::Current().Take("Refresh");
    fakes::FakeAdo::Current().Take("Refresh");
    fakes::FakeAdo::Current().Take("Refresh");
    EXPECT_FALSE(Run(Failing(), {}, {}));
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(parameters_[1]->Value(), Variant("typed"));
    EXPECT_EQ(TheCall(), "");
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(LogLines(), (Lines(2, kSource)));
}

TEST_F(ExecuteStoredProcedure, ACallThatFailsCopiesNothingBack) {
    Hold("@a", "typed");
    EXPECT_FALSE(Run(List({Live("@a")}), Failing(), List({Live("@a")})));
    EXPECT_EQ(parameters_[1]->Value(), Variant("typed"));
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
    EXPECT_EQ(LogLines(), Lines{kSource});
    EXPECT_EQ(ado_.calls.back(), "Close");
}

TEST_F(ExecuteStoredProcedure, ASecondRefreshThatFailsLosesTheResult) {
    Hold("@a", "typed");
    EXPECT_FALSE(Run(List({Live("@a")}), Result(), Failing()));
    EXPECT_EQ(parameters_[1]->Value(), Variant("typed"));
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(manager_.ErrorCount(), Int16(1));
}

TEST_F(ExecuteStoredProcedure, AMissingRecordsetFailsAfterTheCopying) {
    Hold("@a", "typed");
    EXPECT_FALSE(
        Run(List({Live("@a")}), {.no_recordset = true, .output = {{"@a", "out"}}}, List({Live("@a")})));
    ExpectRaised("CViewDataMgr", "Data could not be retrieved from the SQL Server!");
    EXPECT_EQ(parameters_[1]->Value(), Variant("out"));
    EXPECT_EQ(Cells(data_), kDataBefore);
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(ExecuteStoredProcedure, AProcedureWithoutAResultFailsAlthoughItHasRun) {
    Hold("@a", "typed");
    EXPECT_FALSE(Run(List({Live("@a")}), {.output = {{"@a", "out"}}}, List({Live("@a")})));
    EXPECT_EQ(failure_.number, ado::kObjectClosed);
    EXPECT_EQ(parameters_[1]->Value(), Variant("out"));
    EXPECT_EQ(data_.ColumnUpperBound(), 0);
    EXPECT_EQ(data_.RowUpperBound(), 0);
    EXPECT_EQ(manager_.ErrorCount(), Int16(0));
    EXPECT_EQ(LogLines(), Lines{kSource});
}

TEST_F(ExecuteStoredProcedure, AResultWithoutRowsHasItsNamesOnly) {
    EXPECT_TRUE(Run(List({}), Rows({}), List({})));
    EXPECT_EQ(Cells(data_), (std::vector<Lines>{{"column0"}}));
}

TEST_F(ExecuteStoredProcedure, TheErrorsOfTheCallAreCollectedAndNotThoseOfTheSecondRefresh) {
    AdoAnswer call = Result();
    call.errors = WithErrors({-1, -2}).errors;
    AdoAnswer after = List({});
    after.errors = WithErrors({-3}).errors;
    EXPECT_TRUE(Run(List({}), call, after));
    EXPECT_EQ(manager_.ErrorCount(), Int16(2));
}

TEST_F(ExecuteStoredProcedure, AnElementWithoutAParameterFails) {
    parameters_.resize(2);
    EXPECT_FALSE(Run(List({Live("@a")}), Result(), List({})));
    EXPECT_EQ(failure_.number, run_time::kObjectVariableNotSet);
    EXPECT_EQ(TheCall(), "");
}

TEST_F(ExecuteStoredProcedure, AnEmptyArraySuppliesNoValues) {
    parameters_.clear();
    EXPECT_TRUE(Run(List({Live("@a")}), Result(), List({Live("@a")})));
    EXPECT_EQ(TheCall(), "call spOne -1 @a=(Empty)");
}

} // namespace
} // namespace kv
