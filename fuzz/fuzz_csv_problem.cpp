// libFuzzer entry: arbitrary bytes through CheckCsvProblem (see FuzzChecks.h); a failed check or
// any sanitizer report ends the run with the input saved.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "FuzzChecks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string problem = orvane::fuzz::CheckCsvProblem(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!problem.empty()) {
    std::fprintf(stderr, "finding: %s\n", problem.c_str());
    std::abort();
  }
  return 0;
}
