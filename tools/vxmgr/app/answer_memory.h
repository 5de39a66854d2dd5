// Answers of drivers that are asked for once while an InventoryMemory lives: commands that run
// inside one command see one state of the adapters.
#pragma once

#include <map>
#include <mutex>

#include "vxmgr/app/inventory.h"

namespace vxmgr {

template <class Key, class Answer>
class AnswerMemory {
  public:
    // What was kept, or what ask() gives. Several may ask at a time.
    template <class Ask>
    Answer Get(const Key& key, Ask ask) {
        const uint64_t generation = InventoryGeneration();
        if (generation == 0) {
            return ask();
        }
        {
            const std::lock_guard guard(lock_);
            if (generation_ != generation) {
                generation_ = generation;
                answers_.clear();
            }
            if (const auto found = answers_.find(key); found != answers_.end()) {
                return found->second;
            }
        }
        Answer answer = ask();
        const std::lock_guard guard(lock_);
        if (generation_ == generation) {
            answers_.emplace(key, answer);
        }
        return answer;
    }

  private:
    std::mutex lock_;
    uint64_t generation_ = 0;
    std::map<Key, Answer> answers_;
};

}  // namespace vxmgr
