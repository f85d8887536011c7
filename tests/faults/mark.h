// How a program under test tells the tracer that its own work begins.
#pragma once

// No system call has this number, so that it does nothing where nobody traces.
constexpr long FAULTS_MARK = 77770001;
