// Compiles as it is, and not with one of the macros: each is something that settings refuse.

#include <ConfigurationFramework/Settings.h>

#include <array>
#include <string>
#include <vector>

enum class Unit { Millimetre, Inch };
template <>
struct Orvant::EnumTexts<Unit> {
#ifdef DUPLICATE_TEXTS
    static constexpr std::array texts = {Orvant::EnumText{Unit::Millimetre, "mm"},
                                         Orvant::EnumText{Unit::Inch, "mm"}};
#else
    static constexpr std::array texts = {Orvant::EnumText{Unit::Millimetre, "mm"},
                                         Orvant::EnumText{Unit::Inch, "inch"}};
#endif
};

enum class Side { Left, Right };

namespace {

struct View : Orvant::Settings<View> {
    View() : Settings("View") {}
    Orvant::Setting<bool> flag{this, "Flag", "", true, Orvant::hidden};
    Orvant::Setting<int> count{this, "Count", "", 10, Orvant::Range{1, 10}};
    Orvant::Setting<unsigned int> size{this, "Size", "", 1U, Orvant::Range{0, 10}};
    Orvant::Setting<float> gray{this, "Gray", "", 0.7F, Orvant::Range{0.1, 0.7}};
    Orvant::Setting<double> angle{this, "Angle", "", 1.0, Orvant::Range{1, 170.0}};
    Orvant::Setting<std::string> name{this, "Name", "", "", Orvant::OneOf{"", "front"}};
    Orvant::Setting<std::vector<std::string>> names{this, "Names", "", {"a", "b"}};
    Orvant::Setting<Unit> unit{this, "Unit", "", Unit::Inch};
#ifdef WRONG_TYPE
    Orvant::Setting<long> fault{this, "Fault", "", 1L};
#endif
#ifdef ENUMERATION_WITHOUT_TEXTS
    Orvant::Setting<Side> fault{this, "Fault", "", Side::Left};
#endif
#ifdef RANGE_OF_TEXTS
    Orvant::Setting<std::string> fault{this, "Fault", "", "", Orvant::Range{1, 2}};
#endif
#ifdef DEFAULT_OUT_OF_RANGE
    Orvant::Setting<double> fault{this,          "Fault", "", 0.5, Orvant::Range{1.0, 170.0},
                                  Orvant::hidden};
#endif
};

} // namespace

int main() {
    const View view;
#ifdef COPIED_SETTINGS
    const View fault = view;
#endif
#ifdef COPIED_SETTING
    const Orvant::Setting<bool> fault = view.flag;
#endif
    return view.count;
}
