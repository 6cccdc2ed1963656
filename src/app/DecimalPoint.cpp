#include "app/DecimalPoint.h"

#include <langinfo.h>
#include <locale.h>

#include <cstdlib>
#include <iterator>

#include "platform/Dialogs.h"

namespace orvane {

namespace {
constexpr const char* kWarningTitle = "Decimal Comma Warning!";
constexpr int kWarningStyle = mb::YesNoCancel + mb::Critical;  // 19
}  // namespace

DecimalPoint::DecimalPoint(Dialogs& dialogs, SeparatorSource source)
    : dialogs_(dialogs), source_(std::move(source)) {}

std::string DecimalPoint::userSeparator() {
  const char* name = nullptr;
  for (const char* var : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
    const char* value = std::getenv(var);
    if (value && *value) {
      name = value;
      break;
    }
  }
  if (!name) return ".";
  // A locale object of its own: the process's global locale is never touched.
  locale_t locale = newlocale(LC_NUMERIC_MASK, name, static_cast<locale_t>(0));
  if (locale == static_cast<locale_t>(0)) return ".";
  std::string separator = nl_langinfo_l(RADIXCHAR, locale);
  freelocale(locale);
  return separator.empty() ? "." : separator;
}

std::string DecimalPoint::warningText() {
  const char* lines[] = {
      "Proper operation of this application requires the use of the DECIMAL POINT.",
      "Your system is currently using the DECIMAL COMMA.",
      "",
      "Do you wish to temporarily change this system setting to decimal point?",
      "(Upon exiting, this application will restore your setting.)",
      "(See HELP FILE or visit www.orvane.example for instructions on how to change MANUALLY)",
      "",
      "Press YES to change.",
  };
  std::string text = lines[0];
  for (size_t i = 1; i < std::size(lines); ++i) text += std::string("\r") + lines[i];
  return text;
}

bool DecimalPoint::Check() {
  saved_ = source_();
  if (saved_ == ".") {
    pointInForce_ = true;
    return true;
  }
  switch (dialogs_.MsgBox(warningText(), kWarningStyle, kWarningTitle)) {
    case mb::Yes:
      pointInForce_ = true;
      return true;
    case mb::No:
    case mb::Cancel:
      return false;
    default:
      return true;
  }
}

void DecimalPoint::Restore() {
  // Nothing outside the process was changed: the user's separator is still in place.
  pointInForce_ = saved_ == ".";
  ++restoreCount_;
}

}  // namespace orvane
