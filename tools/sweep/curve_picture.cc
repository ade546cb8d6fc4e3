// SPDX-License-Identifier: MIT
#include "tools/sweep/curve_picture.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "tools/sweep/written_value.h"

namespace mardle::tools {
namespace {

constexpr double kWidth = 720;
constexpr double kLeft = 84;
constexpr double kRight = 20;
constexpr double kPanelHeight = 200;
constexpr double kTop = 34;
constexpr double kBetween = 46;
constexpr double kFoot = 78;
constexpr double kInset = 18;  // from the frame of a panel to the outermost marks
constexpr double kLegendStep = 170;
constexpr double kNumberWidth = 26;  // the room that a number below takes
constexpr int kTicks = 5;

std::string Place(double value) { return WrittenValue("%.1f", value); }

// Where a value of an axis stands.
struct Axis {
  double low = 0;
  double high = 0;
  double begin = 0;
  double end = 0;
  double At(double value) const {
    const double share = high > low ? (value - low) / (high - low) : 0.5;
    return begin + share * (end - begin);
  }
};

// A line through the rows, its marks and what it is called.
struct Curve {
  std::string kind;  // the class of its style
  std::string name;
  std::function<double(const SweepRow&)> value;
};

std::vector<Curve> AgreementCurves(const Sweep& sweep) {
  std::vector<Curve> curves = {
      {"stability", "stability", [](const SweepRow& row) { return row.stability; }},
      {"least", "its least", [](const SweepRow& row) { return row.least_stability; }}};
  if (sweep.rows[0].classes) {
    curves.push_back({"purity", "purity", [](const SweepRow& row) { return row.classes->purity; }});
    curves.push_back({"nmi", "NMI", [](const SweepRow& row) { return row.classes->nmi; }});
  }
  return curves;
}

class Picture {
 public:
  explicit Picture(const Sweep& sweep) : sweep_(sweep) {
    across_ = {double(sweep.rows.front().nclusters), double(sweep.rows.back().nclusters),
               kLeft + kInset, kWidth - kRight - kInset};
  }

  std::string Text();

 private:
  void Begin();
  void Panel(double top, const std::string& title, const std::vector<Curve>& curves, bool is_share);
  void Frame(double top, const Axis& up);
  void Draw(const Curve& curve, const Axis& up);
  void Numbers(double bottom);
  void Legend(double y, const std::vector<Curve>& curves);
  void Label(const char* kind, double x, double y, const std::string& text);
  std::string Answer() const;

  const Sweep& sweep_;
  Axis across_;
  std::string text_;
};

std::string Picture::Answer() const {
  const std::optional<int> number = sweep_.recommendation.nclusters;
  return number ? "Recommended: " + std::to_string(*number) + " clusters" : "No recommendation";
}

void Picture::Label(const char* kind, double x, double y, const std::string& text) {
  text_ += "<text class=\"" + std::string(kind) + "\" x=\"" + Place(x) + "\" y=\"" + Place(y) +
           "\">" + text + "</text>\n";
}

void Picture::Begin() {
  const std::string height = Place(kTop + 2 * kPanelHeight + kBetween + kFoot);
  const std::string from = std::to_string(sweep_.rows.front().nclusters);
  const std::string to = std::to_string(sweep_.rows.back().nclusters);
  text_ =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + Place(kWidth) + "\" height=\"" +
      height + "\" viewBox=\"0 0 " + Place(kWidth) + " " + height +
      "\" role=\"img\" aria-labelledby=\"title desc\">\n<title id=\"title\">" + from + " to " + to +
      " clusters. " + Answer() +
      "</title>\n<desc id=\"desc\">Over the number of clusters: " + "above, the value of " +
      ShownName(sweep_.crfun) + "; below, how far the clusterings of different seeds agree" +
      (sweep_.rows[0].classes ? ", and clusters and classes" : "") +
      ". A grey line marks the number that is recommended, if there is one.</desc>\n"
      "<style>text{font:12px sans-serif;fill:#1d2126}.head{font-weight:bold}.end{text-anchor:end}"
      ".middle{text-anchor:middle}.frame{fill:none;stroke:#b9bdc3}.grid{stroke:#e6e8eb}"
      ".chosen{stroke:#dfe3e8;stroke-width:9;stroke-linecap:round}"
      ".line{fill:none;stroke-width:2}.value{stroke:#2f6db5}.stability{stroke:#c9552b}"
      ".least{stroke:#c9552b;stroke-dasharray:2 4}.purity{stroke:#2a8a68;stroke-dasharray:8 4}"
      ".nmi{stroke:#8d4fa8;stroke-dasharray:8 3 2 3}.mark{fill:#ffffff;stroke-width:2;"
      "stroke-dasharray:none}</style>\n"
      "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
}

// The frame of a panel, with lines across at round values and one up at the number recommended.
void Picture::Frame(double top, const Axis& up) {
  for (const double tick : RoundTicks(up.low, up.high)) {
    const std::string y = Place(up.At(tick));
    text_ += "<path class=\"grid\" d=\"M" + Place(kLeft) + " " + y + "H" + Place(kWidth - kRight) +
             "\"/>\n";
    Label("end", kLeft - 6, up.At(tick) + 4, WrittenValue("%g", tick));
  }
  if (sweep_.recommendation.nclusters) {
    text_ += "<path class=\"chosen\" d=\"M" + Place(across_.At(*sweep_.recommendation.nclusters)) +
             " " + Place(top + 6) + "V" + Place(top + kPanelHeight - 6) + "\"/>\n";
  }
  text_ += "<rect class=\"frame\" x=\"" + Place(kLeft) + "\" y=\"" + Place(top) + "\" width=\"" +
           Place(kWidth - kRight - kLeft) + "\" height=\"" + Place(kPanelHeight) + "\"/>\n";
}

// The line is broken where there is no value.
void Picture::Draw(const Curve& curve, const Axis& up) {
  std::string line;
  std::string marks;
  bool goes_on = false;
  for (const SweepRow& row : sweep_.rows) {
    const double value = curve.value(row);
    if (!std::isfinite(value)) {
      goes_on = false;
      continue;
    }
    const std::string x = Place(across_.At(row.nclusters));
    const std::string y = Place(up.At(value));
    line += (goes_on ? "L" : "M") + x + " " + y;
    goes_on = true;
    marks += "<circle class=\"mark " + curve.kind + "\" cx=\"" + x + "\" cy=\"" + y +
             "\" r=\"3.5\"><title>" + std::to_string(row.nclusters) + " clusters: " + curve.name +
             " " + WrittenValue("%.5g", value) + "</title></circle>\n";
  }
  text_ += "<path class=\"line " + curve.kind + "\" d=\"" + line + "\"/>\n" + marks;
}

void Picture::Panel(double top, const std::string& title, const std::vector<Curve>& curves,
                    bool is_share) {
  Axis up{is_share ? 0 : HUGE_VAL, is_share ? 1 : -HUGE_VAL, top + kPanelHeight - kInset,
          top + kInset};
  for (const Curve& curve : curves) {
    for (const SweepRow& row : sweep_.rows) {
      const double value = curve.value(row);
      if (!std::isfinite(value)) continue;
      up.low = std::min(up.low, value);
      up.high = std::max(up.high, value);
    }
  }
  if (up.low > up.high) up.low = up.high = 0;
  Label("head", kLeft, top - 8, title);
  Frame(top, up);
  for (const Curve& curve : curves) Draw(curve, up);
}

// The numbers of clusters below the panels, as many as there is room for.
void Picture::Numbers(double bottom) {
  double taken = 0;
  for (const SweepRow& row : sweep_.rows) {
    const double x = across_.At(row.nclusters);
    if (x < taken) continue;
    taken = x + kNumberWidth;
    Label("middle", x, bottom + 17, std::to_string(row.nclusters));
  }
  Label("middle", (kLeft + kWidth - kRight) / 2, bottom + 37, "clusters");
}

void Picture::Legend(double y, const std::vector<Curve>& curves) {
  double x = kLeft;
  for (const Curve& curve : curves) {
    text_ += "<path class=\"line " + curve.kind + "\" d=\"M" + Place(x) + " " + Place(y - 4) +
             "h36\"/>\n";
    Label("name", x + 44, y, curve.name);
    x += kLegendStep;
  }
}

std::string Picture::Text() {
  const std::vector<Curve> value = {
      {"value", ShownName(sweep_.crfun), [](const SweepRow& row) { return row.value; }}};
  const std::vector<Curve> agreement = AgreementCurves(sweep_);
  const double second = kTop + kPanelHeight + kBetween;
  Begin();
  Panel(kTop, std::string("Value of ") + ShownName(sweep_.crfun), value, false);
  Label("end", kWidth - kRight, kTop - 8, Answer());
  Panel(second, "Agreement", agreement, true);
  Numbers(second + kPanelHeight);
  Legend(second + kPanelHeight + 64, agreement);
  return text_ + "</svg>\n";
}

}  // namespace

std::vector<double> RoundTicks(double low, double high) {
  std::vector<double> ticks;
  const double range = high - low;
  if (!(range > 0) || !std::isfinite(range)) return ticks;
  const double power = std::pow(10, std::floor(std::log10(range / kTicks)));
  double step = power;
  for (const double factor : {2.0, 5.0, 10.0}) {
    if (range / step > kTicks) step = factor * power;
  }
  const double first = std::ceil(low / step);
  const double last = std::floor(high / step);
  for (double tick = first; tick <= last; ++tick) ticks.push_back(tick * step);
  return ticks;
}

std::string CurvePicture(const Sweep& sweep) { return Picture(sweep).Text(); }

}  // namespace mardle::tools
