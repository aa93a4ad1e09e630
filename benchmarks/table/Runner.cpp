#include "Runner.h"

#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

#include "Contestant.h"
#include "Measuring.h"

namespace {

/// A contestant's process. It answers each line with a line, and ends with its input.
class Process {
 public:
  Process(const Contender& contender, const Setting& setting) : name_(contender.name) {
    int in[2];
    int out[2];
    Expect(pipe2(in, O_CLOEXEC) == 0 && pipe2(out, O_CLOEXEC) == 0, "pipe");
    std::vector<std::string> words = {"vfile_table",
                                      "--contestant",
                                      name_,
                                      setting.directory,
                                      setting.content,
                                      std::to_string(setting.size),
                                      std::to_string(setting.count),
                                      std::to_string(setting.cache)};
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    child_ = fork();
    if (child_ == 0) {
      dup2(in[0], STDIN_FILENO);
      dup2(out[1], STDOUT_FILENO);
      execv("/proc/self/exe", arguments.data());
      _exit(127);
    }
    close(in[0]);
    close(out[1]);
    Expect(child_ > 0, "fork");
    to_ = fdopen(in[1], "w");
    from_ = fdopen(out[0], "r");
  }
  ~Process() {
    std::fclose(to_);
    std::fclose(from_);
    waitpid(child_, nullptr, 0);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  std::string Ask(const char* what) {
    std::fprintf(to_, "%s\n", what);
    std::fflush(to_);
    char line[64];
    Expect(std::fgets(line, sizeof line, from_) != nullptr, name_ + " has failed");
    return line;
  }

 private:
  const std::string name_;
  pid_t child_ = -1;
  std::FILE* to_ = nullptr;
  std::FILE* from_ = nullptr;
};

/// A process with its times.
struct Runner {
  Result* result;
  bool peer;
  std::int32_t count;
  std::unique_ptr<Process> process;
  std::vector<double> times;
};

std::string PeakMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::to_string(std::stod(line.substr(6)) * 1024 / 1e6);
  }
  return "0";
}

void CheckContents(const std::vector<Runner>& runners, const std::string& work) {
  std::uint64_t known = 0;
  for (const Runner& runner : runners) {
    const std::uint64_t sum = std::stoull(runner.process->Ask("check"));
    if (known == 0) known = sum;
    Expect(sum == 0 || sum == known, work + ": the contents of " + runner.result->label + " and others differ");
  }
}

}  // namespace

Outcome RunRow(const Row& row, const std::string& directory, const Effort& effort) {
  Outcome outcome;
  outcome.limits.resize(row.limits.size());
  outcome.peers.resize(row.peers.size());
  const std::string content = ContentFile(directory, row.content, row.size);
  std::vector<Runner> runners;
  const auto start = [&](const Contender& contender, Result& result, bool peer) {
    result.label = contender.label;
    result.exists = Exists(contender.name);
    if (!result.exists) return;
    const std::int32_t count = contender.count != 0 ? contender.count : row.count;
    const Setting setting = {directory, content, row.size, count, contender.cache};
    runners.push_back({&result, peer, count, std::make_unique<Process>(contender, setting), {}});
    runners.back().process->Ask("ready");
  };
  start(row.ours, outcome.ours, false);
  for (std::size_t i = 0; i < row.limits.size(); ++i) start(row.limits[i], outcome.limits[i], false);
  for (std::size_t i = 0; i < row.peers.size(); ++i) start(row.peers[i], outcome.peers[i], true);

  const char* command = effort.processorTime ? "round of the processor" : "round";
  const double begin = Now();
  for (std::size_t& round = outcome.rounds; round < effort.mostRounds; ++round) {
    if (round >= effort.leastRounds && Now() - begin > effort.seconds) break;
    for (Runner& runner : runners) {
      if (runner.peer && round >= effort.peerRounds) continue;
      runner.times.push_back(std::stod(runner.process->Ask(command)) / 1e9 / runner.count);
    }
  }
  for (Runner& runner : runners) {
    runner.result->time = Median(runner.times);
    runner.result->peak = std::stod(runner.process->Ask("memory"));
  }
  CheckContents(runners, row.work);
  return outcome;
}

int ServeContestant(const std::vector<std::string>& arguments) {
  Expect(arguments.size() == 6, "arguments of a contestant");
  const Setting setting = {arguments[1], arguments[2], std::stoll(arguments[3]), std::stoi(arguments[4]),
                           static_cast<std::int16_t>(std::stoi(arguments[5]))};
  const std::unique_ptr<Contestant> contestant = MakeContestant(arguments[0], setting);
  for (std::string command; std::getline(std::cin, command);) {
    if (command.rfind("round", 0) == 0) {
      const auto now = command == "round" ? Now : ProcessorNow;
      contestant->Prepare();
      const double begin = now();
      contestant->Run();
      std::cout << std::to_string((now() - begin) * 1e9);
    } else if (command == "memory") {
      std::cout << PeakMemory();
    } else if (command == "check") {
      std::cout << contestant->Check();
    }
    std::cout << std::endl;
  }
  return 0;
}
