// Opens and closes calls, and finds variables and cursors in them.
#include "devserver/tsql/session/call_stack.h"

#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/temporary_tables.h"

namespace devsql {

Variable& CallStack::FindVariable(std::string_view name) {
    const auto found = frame_->variables.find(ToUpper(name));
    if (found == frame_->variables.end()) {
        RaiseError(137, {name});
    }
    return found->second;
}

TablePtr CallStack::FindTableVariable(std::string_view name) const {
    const auto found = frame_->tables.find(ToUpper(name));
    return found == frame_->tables.end() ? nullptr : found->second;
}

std::vector<TablePtr> CallStack::TableVariables() const {
    std::vector<TablePtr> tables;
    for (const Frame* frame = frame_; frame != nullptr; frame = frame->caller) {
        for (const auto& [name, table] : frame->tables) {
            tables.push_back(table);
        }
    }
    return tables;
}

void CallStack::Push(Frame& frame) {
    constexpr int kMostCalls = 32;
    RaiseIf(nesting_ >= kMostCalls, 217, {std::to_string(kMostCalls)});
    frame.caller = frame_;
    frame_ = &frame;
    temporaries_.SetNesting(++nesting_);
}

void CallStack::Pop() {
    temporaries_.EndCall(frame_->tables);
    frame_ = frame_->caller;
    temporaries_.SetNesting(--nesting_);
}

std::shared_ptr<Cursor> CallStack::FindCursor(const std::string& name) {
    const std::string folded = ToUpper(name);
    if (const auto local = frame_->cursors.find(folded); local != frame_->cursors.end()) {
        return local->second;
    }
    const auto global = global_cursors_.find(folded);
    return global == global_cursors_.end() ? nullptr : global->second;
}

void CallStack::CloseCursors() {
    const auto close = [](auto& cursors) {
        for (auto& [name, cursor] : cursors) {
            if (cursor) {
                cursor->open = false;
            }
        }
    };
    close(global_cursors_);
    for (Frame* frame = frame_; frame != nullptr; frame = frame->caller) {
        close(frame->cursors);
    }
}

} // namespace devsql
