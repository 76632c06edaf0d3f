// The texts that drivers prepare (sp_prepare) and run later by their handle.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace devsql {

struct PreparedText {
    std::string declarations; ///< of the parameters
    std::string text;
};

class PreparedTexts {
  public:
    /// Keeps the text until Remove, and returns its handle.
    std::int32_t Add(PreparedText text) {
        texts_[next_] = std::move(text);
        return next_++;
    }
    /// Null for an unknown handle.
    const PreparedText* Find(std::int32_t handle) const {
        const auto found = texts_.find(handle);
        return found == texts_.end() ? nullptr : &found->second;
    }
    void Remove(std::int32_t handle) { texts_.erase(handle); }

  private:
    std::map<std::int32_t, PreparedText> texts_;
    std::int32_t next_ = 1;
};

} // namespace devsql
