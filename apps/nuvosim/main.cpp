// nuvosim: the command-line front end of the NUVOSim library.
#include <cstdio>
#include <exception>

#include "commands.hpp"
#include "nuvo_version.h"

namespace {

constexpr const char *kFooter =
    "Image files: the extension gives the format (.gslib .dat .txt GSLIB text, .vtk, .pgm,\n"
    ".ppm, .gslibbin .bin GSLIB binary); --from KEY / --to KEY name it otherwise.\n"
    "Exit status: 0 success, 1 usage error, 2 input or data error (the library's message\n"
    "and the file name go to stderr; for a parameter file also the line where reading\n"
    "stopped), 3 output error, 128 + the signal's number after Ctrl-C (130) or SIGTERM\n"
    "(143) stopped 'run'. Every output is written under a temporary name and renamed\n"
    "when complete, so a failed command leaves no partial file.\n"
    "Run 'nuvosim COMMAND --help' for the options of a command.";

}  // namespace

int main(int argc, char **argv) {
  using namespace nuvo::cli;
  CLI::App app{"Multiple-point geostatistical simulation on regular 3D grids.", "nuvosim"};
  app.require_subcommand(1);
  app.add_flag_callback(
      "--version",
      [] {
        NUVOPrintVersion(stdout);
        throw CLI::Success();
      },
      "Print the library version and exit");

  addRunCommand(app);
  addCheckCommand(app);
  addInfoCommand(app);
  addConvertCommand(app);
  addRenderCommand(app);
  addGenerateCommand(app);
  addSampleCommand(app);
  addAnalyzeCommand(app);
  addTemplateCommand(app);
  app.footer(kFooter);  // after the subcommands, which would otherwise repeat it

  try {
    app.parse(argc, argv);
  } catch (const CLI::RuntimeError &e) {
    return e.get_exit_code();
  } catch (const CLI::ParseError &e) {
    // Help and --version end here too, with status 0.
    return app.exit(e) == 0 ? kSuccess : kUsageError;
  } catch (const std::exception &e) {
    // Only a failed allocation can get here (an image too large for this machine).
    std::fprintf(stderr, "nuvosim: %s\n", e.what());
    return kInputError;
  }
  return kSuccess;
}
