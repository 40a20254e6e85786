#include "testing/run_korvan.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "testing/temp_dir.h"

namespace korvan::testing {

namespace {
std::string ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

[[noreturn]] void ExecChild(const std::string& binary, const std::vector<std::string>& args,
                            const TempDir& io) {
  int in = open(io.File("in").c_str(), O_RDONLY);
  int out = open(io.File("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  int err = open(io.File("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (in < 0 || out < 0 || err < 0) _exit(126);
  dup2(in, 0);
  dup2(out, 1);
  dup2(err, 2);
  std::vector<char*> argv;
  argv.push_back(const_cast<char*>(binary.c_str()));
  for (const auto& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  execv(binary.c_str(), argv.data());
  _exit(127);
}
}  // namespace

ProgramResult RunKorvanBinary(const std::vector<std::string>& args, const std::string& input) {
  const char* binary = std::getenv("KORVAN_BINARY");
  if (binary == nullptr) throw std::runtime_error("KORVAN_BINARY is not set (run through ctest)");
  TempDir io;
  std::ofstream(io.File("in"), std::ios::binary) << input;
  pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) ExecChild(binary, args, io);
  int status = 0;
  waitpid(pid, &status, 0);
  ProgramResult result;
  result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.out = ReadAll(io.File("out"));
  result.err = ReadAll(io.File("err"));
  return result;
}

}  // namespace korvan::testing
