// SPDX-License-Identifier: MIT
// Environment variables that threads share without a race; ux.h tells the rules, section Ticker.
#ifndef UX_EXAMPLES_FLAG_H
#define UX_EXAMPLES_FLAG_H

#include <atomic>
#include <cstdlib>
#include <string>

// A variable that stops a ticker or an effect by one of its values. It is set before any thread
// starts; from then on only the value's first byte changes, in place and at once. So no reader ever
// sees half a value, and the environment itself, which others may be reading, never moves.
class flag {
  public:
    // To be called before any thread starts.
    void set_up(const char *name, const char *stopping_value) {
        std::string value = stopping_value;
        value[0] = k_lowered;
        setenv(name, value.c_str(), 1);
        m_value = getenv(name);
        m_raised = stopping_value[0];
    }
    bool is_raised() const { return std::atomic_ref<char>(*m_value).load() == m_raised; }
    void raise() const { std::atomic_ref<char>(*m_value).store(m_raised); }
    void lower() const { std::atomic_ref<char>(*m_value).store(k_lowered); }

  private:
    static constexpr char k_lowered = '-';
    char *m_value = nullptr;
    char m_raised = 0;
};

#endif
