// Runs a fuzz target over the files of the folders in the arguments, without a
// fuzzer.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tests/fuzz/require.h"

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i)
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::ifstream stream(entry.path(), std::ios::binary);
      const std::string bytes(std::istreambuf_iterator<char>(stream), {});
      std::cout << entry.path().filename().string() << std::endl;
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++count;
    }
  std::cout << count << " inputs" << std::endl;
  return count == 0 ? 1 : 0;
}
