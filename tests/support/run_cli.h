// Runs vossel-cli as a child process and gives back what it printed and its exit status.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#ifndef VOSSEL_CLI_PATH
#error "VOSSEL_CLI_PATH must name the vossel-cli binary"
#endif

struct CliRun {
  int Status = -1;
  std::string Out, Err;
};

inline CliRun RunCli(const std::vector<std::string>& args) {
  static int serial = 0;
  const std::string base =
      "/tmp/vossel-cli-" + std::to_string(getpid()) + "-" + std::to_string(++serial);
  const std::string outPath = base + ".out", errPath = base + ".err";
  CliRun run;
  const pid_t pid = fork();
  if (pid == 0) {
    if (!std::freopen(outPath.c_str(), "w", stdout) || !std::freopen(errPath.c_str(), "w", stderr))
      _exit(127);
    std::vector<char*> argv;
    std::string program = VOSSEL_CLI_PATH;
    argv.push_back(program.data());
    std::vector<std::string> copy = args;
    for (std::string& a : copy) argv.push_back(a.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  int wstatus = 0;
  waitpid(pid, &wstatus, 0);
  run.Status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1;
  auto slurp = [](const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
  };
  run.Out = slurp(outPath);
  run.Err = slurp(errPath);
  std::remove(outPath.c_str());
  std::remove(errPath.c_str());
  return run;
}
