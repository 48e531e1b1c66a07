// SPDX-License-Identifier: MIT
// The same record checks, built as C++: both languages must see one layout.
#include "records.c"
