#include "input/export_writer.hpp"

namespace nuvo {

void ParameterFileWriter::heading(std::initializer_list<const char *> lines) const {
  if (level_ < kCommentHeadings) return;
  if (std::ftell(out_) > 0) std::fputs(eol_, out_);
  for (const char *text : lines) std::fprintf(out_, "%s%s", text, eol_);
}

void ParameterFileWriter::notes(std::initializer_list<const char *> lines) const {
  if (level_ < kCommentNotes) return;
  for (const char *text : lines) std::fprintf(out_, "// %s%s", text, eol_);
}

std::string ParameterFileWriter::fileName(const char *suffix, int index,
                                          const char *extension) const {
  std::string name = prefix_ + suffix;
  if (index >= 0) name += std::to_string(index);
  return name + extension;
}

int ParameterFileWriter::close(File &file) {
  bool failed = std::ferror(file.get()) != 0;
  failed = std::fclose(file.release()) != 0 || failed;
  return failed ? kExportCannotOpen : 0;
}

void ParameterFileWriter::endLine(const std::string &remark) const {
  if (level_ >= kCommentNotes && !remark.empty()) std::fprintf(out_, " // %s", remark.c_str());
  std::fputs(eol_, out_);
}

}  // namespace nuvo
