// nuvosim analyze TI REALIZATION...: how well realizations reproduce the
// statistics of their training image.
#include <memory>

#include "analysis_report.hpp"
#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "records.hpp"

namespace nuvo::cli {

namespace {

struct AnalyzeOptions {
  std::string trainingImage;
  std::vector<std::string> realizations;
  std::string variable;  // empty: the first variable of each image
  int lags = 10;
  std::string csv;
};

// The index of the analysed variable in `image`, or -1 (reported) when it has
// no variable of that name.
int variableIndex(const nuvo_image &image, const std::string &path, const std::string &name) {
  if (name.empty()) return 0;
  for (int iv = 0; iv < image.nvar; ++iv)
    if (name == image.varName[iv]) return iv;
  reportFailure(path, "no variable named " + name);
  return -1;
}

// Reads one image and finds the analysed variable in it.
int readAnalysed(const std::string &path, const AnalyzeOptions &options, nuvo_image *image,
                 int *iv) {
  if (const int status = readImageFile(path, ImageFormat::kByExtension, *image); status != kSuccess)
    return status;
  *iv = variableIndex(*image, path, options.variable);
  return *iv < 0 ? kInputError : kSuccess;
}

int runAnalyze(const AnalyzeOptions &options) {
  runfile::Analysis analysis;
  Image ti;
  int tiVariable = 0;
  if (const int status = readAnalysed(options.trainingImage, options, ti.get(), &tiVariable);
      status != kSuccess)
    return status;
  if (const int rc = analysis.start(*ti.get(), tiVariable, options.lags); rc != 0) {
    reportFailure(options.trainingImage, libraryMessage(rc));
    return kInputError;
  }
  // One realization in memory at a time.
  for (const std::string &path : options.realizations) {
    Image realization;
    int iv = 0;
    if (const int status = readAnalysed(path, options, realization.get(), &iv); status != kSuccess)
      return status;
    if (const int rc = analysis.add(*realization.get(), iv); rc != 0) {
      reportFailure(path, libraryMessage(rc));
      return kInputError;
    }
  }

  const bool categorical = analysis.categorical();
  const Report report = analysis.report();
  std::printf("Training image: %s, variable %s, %s", options.trainingImage.c_str(),
              ti->varName[tiVariable], categorical ? "categorical" : "continuous");
  if (categorical) std::printf(" (%zu categories)", analysis.categories().size());
  std::printf("\nRealizations: %zu, summarised by their mean and 5-95 %% envelope\n",
              options.realizations.size());
  printReport(stdout, report);
  if (options.csv.empty()) return kSuccess;
  return writeOutput(options.csv, [&](std::FILE *stream) {
    writeReportCsv(stream, report);
    return std::string();
  });
}

}  // namespace

void addAnalyzeCommand(CLI::App &app) {
  auto options = std::make_shared<AnalyzeOptions>();
  CLI::App *command = app.add_subcommand(
      "analyze", "Compare the statistics of realizations with those of their training image");
  command->footer(
      "A variable with at most 20 distinct values, all whole numbers, is categorical: for\n"
      "each category its proportion, its share of isolated nodes (no face neighbour of the\n"
      "same category), its indicator variogram and its connectivity function (face\n"
      "neighbours) at lags 1 to --lags along x, y and z, and over all categories the\n"
      "Jensen-Shannon divergence, in bits, between the histograms of the 3 x 3 patterns (x\n"
      "by y, every layer) of the training image and of the realizations pooled. Otherwise:\n"
      "mean, standard deviation, minimum, quartiles, maximum and variograms. Each statistic\n"
      "of the training image is shown beside the mean and the 5-95 % envelope of the\n"
      "realizations; --csv writes the same as rows statistic,category,lag,source,value.");
  command->add_option("TI", options->trainingImage, "Training image file")->required();
  command->add_option("REALIZATION", options->realizations, "Realization files")->required();
  command->add_option("--var", options->variable,
                      "Variable analysed in every image (default: the first of each)");
  command->add_option("--lags", options->lags, "Largest lag, in nodes")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  command->add_option("--csv", options->csv, "CSV file to write");
  setAction(command, [options] { return runAnalyze(*options); });
}

}  // namespace nuvo::cli
