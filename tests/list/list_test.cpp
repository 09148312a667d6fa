#include "list/list.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace {

/// The slots of the linked elements in order; every backward link must agree.
std::vector<int> walk(const indexed_list& list) {
    std::vector<int> slots;
    const indexed_list_elem* previous = nullptr;
    for (auto* elem = list.len > 0 ? list.first : nullptr; elem; elem = elem->next) {
        EXPECT_EQ(elem->previous, previous) << "slot " << elem->index;
        slots.push_back(elem->index);
        previous = elem;
    }
    return slots;
}

TEST(List, KeepsTheOrderOfInsertionThroughAnySequence) {
    const std::unique_ptr<indexed_list, decltype(&free_indexed_list)> list{
        create_indexed_list(6, "KEY"), free_indexed_list};
    std::array<indexed_list_elem, 6> elems;
    std::minstd_rand random{1};
    std::vector<int> expected;
    for (int step = 0; step < 5000; ++step) {
        const auto slot = static_cast<int>(random() % elems.size());
        indexed_list_elem& elem = elems[static_cast<std::size_t>(slot)];
        elem.index = slot;
        const bool is_in = std::ranges::count(expected, slot) != 0;
        const auto action = random() % 50;
        if (action == 0) {
            indexed_list_clear(list.get());
            expected.clear();
        } else if (action % 2 == 0) {
            ASSERT_EQ(add_to_indexed_list(list.get(), &elem), !is_in) << "step " << step;
            if (!is_in)
                expected.push_back(slot);
        } else {
            ASSERT_EQ(remove_from_indexed_list(list.get(), &elem), is_in) << "step " << step;
            std::erase(expected, slot);
        }
        ASSERT_EQ(walk(*list), expected) << "step " << step;
        ASSERT_EQ(list->len, std::ssize(expected));
    }
}

} // namespace
