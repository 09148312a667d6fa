#include "list/list.h"

#include <algorithm>

namespace {

unsigned char& active_flag(indexed_list* p_list, const indexed_list_elem* elem) {
    return p_list->active[static_cast<std::size_t>(elem->index)];
}

} // namespace

indexed_list* create_indexed_list(int max_element, const char* name) {
    const int max_len = std::max(max_element, 0);
    return new indexed_list{.name = name,
                            .active = std::vector<unsigned char>(static_cast<std::size_t>(max_len)),
                            .max_len = max_len};
}

void free_indexed_list(indexed_list* p_list) { delete p_list; }

void indexed_list_clear(indexed_list* p_list) noexcept {
    std::fill(p_list->active.begin(), p_list->active.end(), static_cast<unsigned char>(0));
    p_list->len = 0;
}

int add_to_indexed_list(indexed_list* target_list, indexed_list_elem* elem_to_add) noexcept {
    unsigned char& active = active_flag(target_list, elem_to_add);
    if (active)
        return 0;

    elem_to_add->next = nullptr;
    if (target_list->len == 0) {
        elem_to_add->previous = nullptr;
        target_list->first = elem_to_add;
    } else {
        elem_to_add->previous = target_list->last;
        target_list->last->next = elem_to_add;
    }
    target_list->last = elem_to_add;
    active = 1;
    ++target_list->len;
    return 1;
}

int remove_from_indexed_list(indexed_list* target_list,
                             indexed_list_elem* elem_to_remove) noexcept {
    unsigned char& active = active_flag(target_list, elem_to_remove);
    if (!active)
        return 0;

    indexed_list_elem* previous = elem_to_remove->previous;
    indexed_list_elem* next = elem_to_remove->next;
    (previous ? previous->next : target_list->first) = next;
    (next ? next->previous : target_list->last) = previous;
    active = 0;
    --target_list->len;
    return 1;
}

void dump_indexed_list(indexed_list*) {}
