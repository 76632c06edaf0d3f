// Lets a statement that has written rows run triggers. Only the interpreter can run them, and the rooms below
// it do not know it.
#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace devsql {

struct Firing;

class TriggerRunner {
  public:
    using Function = std::function<void(const std::vector<Firing>&)>;

    /// While one lives, its function runs the triggers. The interpreter makes one for each request.
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

    /// Must be called inside the statement's Transactions::Write. Raises 3609 if a trigger has ended the
    /// transaction, 3616 if it has made it unfit.
    void Run(const std::vector<Firing>& firings) { function_(firings); }

  private:
    Function function_;
};

} // namespace devsql
