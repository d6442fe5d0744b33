#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ZDTAnalyzer {

// What every element routine of a parse receives. It belongs to the caller of the
// parser, so the values collected in the slots outlive a failed parse.
template <typename Consumer> struct ConsumerContext {
    // Slot numbers are fixed per format; 400 covers the largest one.
    static constexpr std::size_t SlotCount = 400;

    explicit ConsumerContext(Consumer* consumerOrNull = nullptr) : slots(SlotCount), consumer(consumerOrNull) {}

    std::vector<std::string> slots;
    // Null makes the routines collect values but skip their output.
    Consumer* consumer;
};

} // namespace ZDTAnalyzer
