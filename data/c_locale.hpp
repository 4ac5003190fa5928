// Locale-independent number text: readers and printers of the data model hold a
// CNumericLocale while they convert numbers.
#pragma once

#include <clocale>

#include <locale.h>

namespace nuvo {

// Makes this thread read and write numbers with the C locale's decimal point for
// its lifetime, whatever locale the host program chose.
class CNumericLocale {
 public:
  CNumericLocale() : c_(newlocale(LC_NUMERIC_MASK, "C", locale_t{})) {
    if (c_ != locale_t{}) previous_ = uselocale(c_);
  }
  ~CNumericLocale() {
    if (c_ == locale_t{}) return;
    uselocale(previous_);
    freelocale(c_);
  }
  CNumericLocale(const CNumericLocale &) = delete;
  CNumericLocale &operator=(const CNumericLocale &) = delete;

 private:
  locale_t c_;
  locale_t previous_ = locale_t{};
};

}  // namespace nuvo
