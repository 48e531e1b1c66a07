// SPDX-License-Identifier: MIT
// Which key of the remote control a key of an input device is.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace ux::inputd {

class key_table {
  public:
    // The arrows, digits, Enter or OK, Backspace or Delete, Shift and the period.
    key_table();

    // "NAME=KEY": NAME as linux/input-event-codes.h has it, KEY a name or code of ux-remote.
    // Throws usage_failure.
    void assign(const std::string &assignment);

    // Nothing for a key that the table does not hold. `event_code` is an EV_KEY code.
    std::optional<int> key_of(unsigned event_code) const;

    const std::map<unsigned, int> &all() const { return m_keys; }

  private:
    std::map<unsigned, int> m_keys;
};

} // namespace ux::inputd
