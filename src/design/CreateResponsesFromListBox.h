// The entries of a list as responses of a question: between a widget and the model, which knows
// none.
#pragma once

#include "document/clsQ.h"
#include "platform/controls/ListBox.h"

namespace pollarix {

// Appends a response without row or jump for each entry, first to last, keeping those that are
// there. Throws Overflow for a 32768th response.
inline void CreateResponsesFromListBox(clsQ& q, const ListBox& list) {
    for (int i = 0; i < list.ListCount(); ++i)
        q.AddResponse(list.List(i), -1, -1, "");
}

} // namespace pollarix
