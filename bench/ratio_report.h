// SPDX-License-Identifier: MIT
// Turns measured times into ratios. A benchmark is named "task/contender"; the contender "ux" is
// compared with every other one of its task.
#ifndef UX_BENCH_RATIO_REPORT_H
#define UX_BENCH_RATIO_REPORT_H

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

class ratio_report : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

  private:
    // Times in nanoseconds of all repetitions, by task and contender.
    std::map<std::string, std::map<std::string, std::vector<double>>> m_times;
    std::vector<std::string> m_tasks; // in the order of their first run
};

#endif
