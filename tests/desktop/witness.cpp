// A program for the tests to start. It writes a file beside itself, unless it was given arguments.
#include <fstream>
#include <string>

int main(int count, char** arguments) {
  if (count == 1) std::ofstream(std::string(arguments[0]) + ".seen");
}
