// SPDX-License-Identifier: MIT
// The table of ratios; see ratio_report.h.

#include "bench/ratio_report.h"

#include <algorithm>
#include <cstdio>

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

bool ratio_report::ReportContext(const Context &) {
    printf("%-28s %-10s %12s %10s  %s\n", "task", "contender", "median ns", "best ns",
           "ux takes x times as long");
    return true;
}

void ratio_report::ReportRuns(const std::vector<Run> &runs) {
    for (const Run &run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred)
            continue;
        const std::string name = run.run_name.function_name;
        const size_t slash = name.rfind('/');
        const std::string task = name.substr(0, slash);
        if (!m_times.count(task))
            m_tasks.push_back(task);
        m_times[task][name.substr(slash + 1)].push_back(run.GetAdjustedRealTime());
    }
}

void ratio_report::Finalize() {
    std::sort(m_tasks.begin(), m_tasks.end());
    for (const std::string &task : m_tasks) {
        const auto &contenders = m_times[task];
        const auto own = contenders.find("ux");
        for (const auto &[name, times] : contenders) {
            const double time = median(times);
            printf("%-28s %-10s %12.1f %10.1f", task.c_str(), name.c_str(), time,
                   *std::min_element(times.begin(), times.end()));
            if (own != contenders.end() && name != "ux")
                printf("  %.3f", median(own->second) / time);
            printf("\n");
        }
    }
}
