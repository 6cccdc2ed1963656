#include "regression/StatisticsReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/PrinterPage.h"

namespace orvane {

namespace {

// v with `digits` significant digits, in the program's number form.
std::string significant(double v, int digits) {
  if (std::isnan(v)) return "NaN";
  if (std::isinf(v)) return v > 0 ? "Inf" : "-Inf";
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*g", digits, v);
  return formatGeneral(std::strtod(buffer, nullptr));
}

// Figures in the text carry as many digits as R's summary shows and a little more.
constexpr int kTextDigits = 7;

std::string padLeft(const std::string& text, size_t width) {
  return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

std::string padRight(const std::string& text, size_t width) {
  return text.size() >= width ? text : text + std::string(width - text.size(), ' ');
}

std::string jsonNumber(double v) {
  if (!std::isfinite(v)) return "null";
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.17g", v);
  return buffer;
}

std::string jsonString(const std::string& text) {
  std::string out = "\"";
  for (const char ch : text) {
    const auto u = static_cast<unsigned char>(ch);
    if (ch == '"' || ch == '\\') {
      out += '\\';
      out += ch;
    } else if (u < 0x20) {
      char buffer[8];
      std::snprintf(buffer, sizeof buffer, "\\u%04x", u);
      out += buffer;
    } else {
      out += ch;
    }
  }
  return out + "\"";
}

}  // namespace

std::string CoefficientName(const std::vector<std::string>& names, int j) {
  const std::string a = "A" + std::to_string(j);
  if (j == 0) return a + " (constant)";
  return j <= static_cast<int>(names.size()) ? a + " " + names[j - 1] : a;
}

std::string PValueText(double p, int digits) {
  if (p < 2.2e-16) return "< 2e-16";
  return significant(p, digits);
}

std::vector<std::string> CoefficientTable(const FitSummary& s, const std::vector<std::string>& names,
                                          bool intervals) {
  std::vector<std::vector<std::string>> rows;
  rows.push_back({"", "Estimate", "Std. Error", "t value", "Pr(>|t|)"});
  if (intervals) rows.back().insert(rows.back().end(), {"2.5 %", "97.5 %"});
  for (int j = 0; j <= s.m; ++j) {
    const CoefficientStatistics& c = s.coefficients[j];
    rows.push_back({CoefficientName(names, j), significant(c.estimate, kTextDigits),
                    significant(c.stdError, kTextDigits), significant(c.t, kTextDigits), PValueText(c.p, 3)});
    if (intervals)
      rows.back().insert(rows.back().end(), {significant(c.low, kTextDigits), significant(c.high, kTextDigits)});
  }
  std::vector<size_t> width(rows[0].size(), 0);
  for (const auto& row : rows)
    for (size_t k = 0; k < row.size(); ++k) width[k] = std::max(width[k], row[k].size());
  std::vector<std::string> lines{"Coefficients:"};
  for (const auto& row : rows) {
    std::string line = padRight(row[0], width[0]);
    for (size_t k = 1; k < row.size(); ++k) line += "  " + padLeft(row[k], width[k]);
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> SummaryLines(const FitSummary& s) {
  const std::string df = std::to_string(s.dfResidual);
  std::vector<std::string> lines;
  lines.push_back("N = " + std::to_string(s.N) + " data sets, m = " + std::to_string(s.m) + " variables, " + df +
                  " degrees of freedom");
  lines.push_back("R-squared: " + significant(s.rSquared, kTextDigits) +
                  ", adjusted R-squared: " + significant(s.adjustedRSquared, kTextDigits));
  lines.push_back("Residual standard error: " + significant(s.residualStandardError, kTextDigits) + " on " + df +
                  " degrees of freedom (divisor N - m - 1)");
  lines.push_back("(The listing's STANDARD ERROR OF ESTIMATE (UNBIASED) divides by N - 2, as the program always has.)");
  lines.push_back("F-statistic: " + significant(s.fStatistic, kTextDigits) + " on " + std::to_string(s.m) + " and " +
                  df + " DF, p-value: " + (s.fPValue < 2.2e-16 ? std::string("< 2.2e-16") : significant(s.fPValue, 4)));
  lines.push_back("Condition number (columns scaled to length 1): " + significant(s.conditionNumber, 3));
  char digits[32];
  std::snprintf(digits, sizeof digits, "%.1f", s.digitsTrusted);
  lines.push_back(std::string("Digits trusted: ") + digits + " of the listed coefficients' 15");
  if (!s.determined)
    lines.push_back("The data sets do not determine the coefficients (too few sets, a constant or dependent "
                    "variable, or values that are not numbers): no other statistics.");
  return lines;
}

std::vector<std::string> StatisticsText(const FitSummary& s, const std::vector<std::string>& names,
                                        bool intervals) {
  std::vector<std::string> lines = CoefficientTable(s, names, intervals);
  lines.emplace_back();
  for (std::string& line : SummaryLines(s)) lines.push_back(std::move(line));
  return lines;
}

std::string StatisticsJson(const FitSummary& s, const RegressionProblem& p) {
  std::string out = "{\"n\": " + std::to_string(s.N) + ", \"m\": " + std::to_string(s.m) + ", \"names\": [";
  for (int j = 0; j < s.m; ++j) out += (j ? ", " : "") + jsonString(j < int(p.names.size()) ? p.names[j] : "");
  out += "], \"coefficients\": [";
  for (int j = 0; j <= s.m; ++j) {
    const CoefficientStatistics& c = s.coefficients[j];
    out += (j ? ", " : "");
    out += "{\"name\": " + jsonString(j == 0 ? "(constant)" : (j <= int(p.names.size()) ? p.names[j - 1] : "")) +
           ", \"estimate\": " + jsonNumber(c.estimate) + ", \"std_error\": " + jsonNumber(c.stdError) +
           ", \"t\": " + jsonNumber(c.t) + ", \"p\": " + jsonNumber(c.p) + ", \"ci95\": [" + jsonNumber(c.low) +
           ", " + jsonNumber(c.high) + "]}";
  }
  const FitStatistics& listed = p.statistics;
  out += "], \"r_squared\": " + jsonNumber(s.rSquared) + ", \"adj_r_squared\": " + jsonNumber(s.adjustedRSquared) +
         ", \"residual_se\": " + jsonNumber(s.residualStandardError) + ", \"df_residual\": " +
         std::to_string(s.dfResidual) + ", \"f_statistic\": " + jsonNumber(s.fStatistic) +
         ", \"f_p_value\": " + jsonNumber(s.fPValue) + ", \"correlation_coefficient\": " +
         jsonNumber(listed.correlation) + ", \"standard_error_of_estimate\": " + jsonNumber(listed.standardError) +
         ", \"sum_squared_residuals\": " + jsonNumber(listed.residualSquares) + ", \"condition_number\": " +
         jsonNumber(s.conditionNumber) + ", \"digits_trusted\": " + jsonNumber(s.digitsTrusted) + "}";
  return out;
}

void PrintStatistics(PrinterPage& page, const FitSummary& summary, const std::vector<std::string>& names,
                     const Canvas& residualPicture) {
  const std::string oldFont = page.FontName();
  page.SetFontName("Courier New");
  for (const std::string& line : StatisticsText(summary, names, true)) page.PrintLine(line);
  page.PrintLine();
  const double width = residualPicture.pixelWidth() * 1440.0 / residualPicture.dpi();
  const double height = residualPicture.pixelHeight() * 1440.0 / residualPicture.dpi();
  page.PaintPicture(residualPicture, 0, page.CurrentY(), width, height);
  page.EndDoc();
  page.SetFontName(oldFont);
}

}  // namespace orvane
