// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace folidex::bench {

/// Several ways to one end, measured in turns in one run, so that what else the machine does falls
/// on all of them. What counts is how their medians stand to each other.
class Comparison {
public:
    /// The arguments are those of the program; the benchmark library takes its options from them.
    Comparison(int argc, char** argv);
    ~Comparison();
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    /// measure does the work once and gives its seconds.
    void add(const std::string& name, int repetitions, std::function<double()> measure);
    void run();

    /// Seconds; 0 for what an option of the benchmark library left out.
    double median(const std::string& name) const;

private:
    std::map<std::string, std::vector<double>> seconds_;
};

/// Seconds of processor time that the action takes, so that a busy machine does not decide.
double processor_seconds(const std::function<void()>& action);

/// Prints a ratio beside its goal; whether that is met. A ratio of 0 was not measured and meets it.
bool report(const QString& what, double ratio, double most);

} // namespace folidex::bench
