// The subcommands of nuvosim. Each lives in its own cmd_<name>.cpp and registers
// itself on the application through one add<Name>Command function; main.cpp only
// calls them in the order they appear in the help.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace nuvo::cli {

// Exit statuses of every subcommand (listed in the help footer and the README).
enum ExitStatus : int {
  kSuccess = 0,
  kUsageError = 1,   // bad command line (unknown option, missing argument, bad value)
  kInputError = 2,   // an input file cannot be opened or read, or its data are refused
  kOutputError = 3,  // an output file cannot be written
};

// Makes `body` the action of `command`: a non-zero status it returns ends the
// program with that status (through CLI::RuntimeError, which CLI11 passes on
// without printing anything more).
inline void setAction(CLI::App *command, std::function<int()> body) {
  command->callback([body = std::move(body)] {
    if (const int status = body(); status != kSuccess) throw CLI::RuntimeError(status);
  });
}

// Checks of numeric options whose messages give the bound as a person writes it
// (CLI11's own ranges print the largest double in full as their upper end).
// `positive`: greater than 0; otherwise 0 or more.
inline CLI::Validator numberCheck(bool positive) {
  return CLI::Validator(
      [positive](const std::string &text) -> std::string {
        double value = 0.0;
        if (!CLI::detail::lexical_cast(text, value)) return text + " is not a number";
        if (positive ? value > 0.0 : value >= 0.0) return {};
        return text + (positive ? " must be greater than 0" : " must be 0 or more");
      },
      positive ? "POSITIVE" : "NONNEGATIVE");
}

void addRunCommand(CLI::App &app);
void addCheckCommand(CLI::App &app);
void addInfoCommand(CLI::App &app);
void addConvertCommand(CLI::App &app);
void addRenderCommand(CLI::App &app);
void addGenerateCommand(CLI::App &app);
void addSampleCommand(CLI::App &app);
void addAnalyzeCommand(CLI::App &app);
void addTemplateCommand(CLI::App &app);

}  // namespace nuvo::cli
