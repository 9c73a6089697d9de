#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarnovel::bench {

/// The processes that this one has started and that live: decoders.
std::vector<int> childProcesses();

/// Milliseconds of processor time, user and system, that this process and its children have spent.
double processorMs();

/// Resident memory now and at its highest, in megabytes; the highest with that of the living children, where
/// pictures that both have mapped count twice.
double residentMb();
double peakResidentMb();

/// Registers a benchmark that measures the processor time of `work`, nine times.
void add(const std::string &name, const std::function<void()> &work);

/// The median of a benchmark that has run; not a number for one that has not.
double medianMs(const std::string &name);

/// "what   12.3 ms (budget 15.0) passed", or "MISSED"; nothing of what the command line left out.
void judge(const std::string &what, double value, const char *unit, double budget);
/// "what   12.3 ms /  45.6 ms =  0.27 (budget 1.20) passed", or "MISSED".
void printRatio(const std::string &what, const std::string &name, const std::string &floor, double budget);

/// 1 when something missed its budget by more than a tenth; else 0.
int exitStatus();

} // namespace tarnovel::bench
