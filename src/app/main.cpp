#include <iostream>
#include <string>
#include <vector>

#include "app/cli/korvan_main.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return korvan::app::RunKorvan(args, std::cout, std::cerr);
}
