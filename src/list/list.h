#pragma once
/// An indexed list holds the members of a fixed population that are active just now: a doubly
/// linked list of elements that their owners embed, and one flag a slot that tells membership in
/// constant time. Insertion and removal allocate nothing; the order is that of insertion.

#include "realtime/nonblocking.h"

#include <string>
#include <vector>

struct indexed_list_elem {
    void* obj = nullptr; ///< what the element stands for
    indexed_list_elem* next = nullptr;
    indexed_list_elem* previous = nullptr;
    int index = 0; ///< fixed slot number, below max_len of every list that it joins
};

struct indexed_list {
    std::string name;                   ///< for diagnostics
    indexed_list_elem* first = nullptr; ///< meaningless while len is 0
    indexed_list_elem* last = nullptr;
    std::vector<unsigned char> active; ///< one a slot: 1 while its element is in the list
    int len = 0;
    int max_len; ///< slots
};

/// Returns an empty list with `max_element` slots. [setup]
[[nodiscard]] indexed_list* create_indexed_list(int max_element, const char* name);

/// Frees the list, not the elements; null is allowed. [setup]
void free_indexed_list(indexed_list* p_list);

/// Empties the list without visiting its elements. [audio]
void indexed_list_clear(indexed_list* p_list) noexcept NONBLOCKING;

/// Appends the element. Returns 1, or 0 when it is in the list already. [audio]
int add_to_indexed_list(indexed_list* target_list,
                        indexed_list_elem* elem_to_add) noexcept NONBLOCKING;

/// Takes the element out. Returns 1, or 0 when it is not in the list. The element keeps its own
/// links, so a walker that stands on it can still step on. [audio]
int remove_from_indexed_list(indexed_list* target_list,
                             indexed_list_elem* elem_to_remove) noexcept NONBLOCKING;

/// A breakpoint's anchor for diagnostics; prints nothing. [setup]
void dump_indexed_list(indexed_list* p_list);
