// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/bench/comparison.h"

#include <QTextStream>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>

namespace folidex::bench {

namespace {

double processor_time() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

Comparison::Comparison(int argc, char** argv) {
    std::vector<char*> arguments(argv, argv + argc);
    std::string in_turns = "--benchmark_enable_random_interleaving=true";
    arguments.push_back(in_turns.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
}

Comparison::~Comparison() {
    benchmark::ClearRegisteredBenchmarks();
}

void Comparison::add(const std::string& name, int repetitions, std::function<double()> measure) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [this, name, measure = std::move(measure)](auto& state) {
                                     for (auto unused : state) {
                                         benchmark::DoNotOptimize(unused);
                                         const double seconds = measure();
                                         state.SetIterationTime(seconds);
                                         seconds_[name].push_back(seconds);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->ReportAggregatesOnly(true)
        ->Unit(benchmark::kMillisecond);
}

void Comparison::run() {
    benchmark::RunSpecifiedBenchmarks();
}

double Comparison::median(const std::string& name) const {
    const auto found = seconds_.find(name);
    if (found == seconds_.end())
        return 0;
    std::vector<double> sorted = found->second;
    std::sort(sorted.begin(), sorted.end());
    return sorted.at(sorted.size() / 2);
}

double processor_seconds(const std::function<void()>& action) {
    const double begin = processor_time();
    action();
    return processor_time() - begin;
}

bool report(const QString& what, double ratio, double most) {
    QTextStream out(stdout);
    out << what.leftJustified(34);
    if (ratio == 0) {
        out << "not measured\n";
        return true;
    }
    const bool met = ratio <= most;
    out << QStringLiteral("%1  goal %2  %3\n")
               .arg(ratio, 8, 'f', 3)
               .arg(most, 6, 'f', 2)
               .arg(met ? QStringLiteral("met") : QStringLiteral("MISSED"));
    return met;
}

} // namespace folidex::bench
