#pragma once

#include "benchmarks/BenchmarkReport.h"

namespace tarn::bench {

// Measures edits in a table of 1,000,000 rows: adding and deleting one, committing a cell, and a change of charset.
void measureRows(BenchmarkReport& report);

}  // namespace tarn::bench
