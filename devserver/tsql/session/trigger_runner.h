// How a statement that has written rows has triggers run, for the rooms below the interpreter that runs them.
#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace devsql {

struct Firing;

class TriggerRunner {
  public:
    using Function = std::function<void(const std::vector<Firing>&)>;

    /// While one lives, it is what runs the triggers: the interpreter of a request.
    class Use {
      public:
        Use(TriggerRunner& runner, Function function) : runner_(runner) {
            runner_.function_ = std::move(function);
        }
        ~Use() { runner_.function_ = nullptr; }
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

      private:
        TriggerRunner& runner_;
    };

    /// Inside the statement's Transactions::Write. Raises 3609 and 3616 where a trigger has ended the
    /// transaction or made it unfit.
    void Run(const std::vector<Firing>& firings) { function_(firings); }

  private:
    Function function_;
};

} // namespace devsql
