#include <tools/routeradvt/Program.h>

#include <iostream>

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  return static_cast<int>(Tool::runProgram({argv + 1, argv + argc}, {std::cout, std::cerr}));
}
