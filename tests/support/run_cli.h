// Runs vossel-cli as a child process and gives back what it printed and its exit status.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

struct CliRun {
  int Status = -1;
  std::string Out, Err;
};

// Starts vossel-cli with its output going to `base`.out and .err, or standard output to `out` when
// one is given; gives its process id.
inline pid_t StartCli(std::vector<std::string> args, const std::string& base,
                      const std::string& out = "") {
  args.insert(args.begin(), VOSSEL_CLI_PATH);
  std::fflush(nullptr);  // else the child writes out what this process has buffered, twice
  const pid_t child = fork();
  if (child == 0) {
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    if (std::freopen((out.empty() ? base + ".out" : out).c_str(), "w", stdout) &&
        std::freopen((base + ".err").c_str(), "w", stderr))
      execv(argv[0], argv.data());
    _exit(127);
  }
  return child;
}

// Out is left empty when standard output goes to `out`.
inline CliRun RunCli(std::vector<std::string> args, const std::string& out = "") {
  const std::string base = "/tmp/vossel-cli-" + std::to_string(getpid());
  int status = 0;
  waitpid(StartCli(std::move(args), base, out), &status, 0);
  CliRun run;
  run.Status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::stringstream printed, err;
  if (out.empty()) printed << std::ifstream(base + ".out").rdbuf();
  err << std::ifstream(base + ".err").rdbuf();
  run.Out = printed.str();
  run.Err = err.str();
  return run;
}
