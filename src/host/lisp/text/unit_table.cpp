#include "host/lisp/text/unit_table.h"

#include <algorithm>
#include <numbers>
#include <string>
#include <unordered_map>

namespace sg {

namespace {

constexpr Dimension kNumber{};
constexpr Dimension kLength = Dimension::of(Dimension::Length);
constexpr Dimension kMass = Dimension::of(Dimension::Mass);
constexpr Dimension kTime = Dimension::of(Dimension::Time);
constexpr Dimension kTemperature = Dimension::of(Dimension::Temperature);
constexpr Dimension kAngle = Dimension::of(Dimension::Angle);
constexpr Dimension kCurrent = Dimension::of(Dimension::Current);
constexpr Dimension kLuminosity = Dimension::of(Dimension::Luminosity);
constexpr Dimension kArea = kLength.power(2);
constexpr Dimension kVolume = kLength.power(3);
constexpr Dimension kFrequency = kNumber / kTime;
constexpr Dimension kSpeed = kLength / kTime;
constexpr Dimension kFlow = kVolume / kTime;
constexpr Dimension kForce = kMass * kLength / kTime.power(2);
constexpr Dimension kPressure = kForce / kArea;
constexpr Dimension kEnergy = kForce * kLength;
constexpr Dimension kPower = kEnergy / kTime;
constexpr Dimension kVoltage = kPower / kCurrent;

constexpr long double kPi = std::numbers::pi_v<long double>;

constexpr long double kInch = 0.0254L;
constexpr long double kFoot = 12 * kInch;
constexpr long double kYard = 3 * kFoot;
constexpr long double kMile = 5280 * kFoot;
constexpr long double kNauticalMile = 1852;
constexpr long double kSurveyFoot = 1200 / 3937.0L;
constexpr long double kLightYear = 9460730472580800.0L;
constexpr long double kAstronomicalUnit = 149597870700.0L;

constexpr long double kSquareFoot = kFoot * kFoot;
constexpr long double kAcre = 4840 * kYard * kYard;

constexpr long double kCubicFoot = kFoot * kFoot * kFoot;
constexpr long double kLiter = 1e-3L;
constexpr long double kGallon = 231 * kInch * kInch * kInch;
constexpr long double kFluidOunce = kGallon / 128;
constexpr long double kImperialGallon = 4.54609L * kLiter;
constexpr long double kBushel = 2150.42L * kInch * kInch * kInch;

constexpr long double kGram = 1e-3L;
constexpr long double kPound = 0.45359237L;
constexpr long double kGrain = kPound / 7000;

constexpr long double kMinute = 60;
constexpr long double kHour = 60 * kMinute;
constexpr long double kDay = 24 * kHour;
constexpr long double kYear = 365.25L * kDay;

constexpr long double kDegree = kPi / 180;

constexpr long double kGravity = 9.80665L;
constexpr long double kPoundForce = kPound * kGravity;
constexpr long double kPsi = kPoundForce / (kInch * kInch);
// Water at its densest and mercury at 0 degrees Celsius: the conventional columns.
constexpr long double kMeterOfWater = 1000 * kGravity;
constexpr long double kMeterOfMercury = 13595.1L * kGravity;

// The International Table's calorie and British thermal unit.
constexpr long double kCalorie = 4.1868L;
constexpr long double kBtu = 1055.05585262L;
constexpr long double kHorsepower = 550 * kFoot * kPoundForce;

constexpr Unit kUnits[] = {
    {L"1", 1, kNumber},

    {L"meter metre m", 1, kLength, true},
    {L"millimeter millimetre mm", 1e-3L, kLength},
    {L"centimeter centimetre cm", 1e-2L, kLength},
    {L"decimeter decimetre dm", 1e-1L, kLength},
    {L"kilometer kilometre km", 1e3L, kLength},
    {L"micrometer micrometre micron um \u00b5m \u03bcm", 1e-6L, kLength},
    {L"nanometer nanometre nm", 1e-9L, kLength},
    {L"angstrom \u00e5ngstr\u00f6m", 1e-10L, kLength},
    {L"inch in", kInch, kLength},
    {L"foot feet ft", kFoot, kLength},
    {L"yard yd", kYard, kLength},
    {L"mile mi", kMile, kLength},
    {L"mil thou", kInch / 1000, kLength},
    {L"microinch", kInch / 1000000, kLength},
    {L"point", kInch / 72, kLength},
    {L"pica", kInch / 6, kLength},
    {L"hand", 4 * kInch, kLength},
    {L"fathom", 2 * kYard, kLength},
    {L"rod pole perch", 5.5L * kYard, kLength},
    {L"chain", 22 * kYard, kLength},
    {L"link", 0.22L * kYard, kLength},
    {L"furlong", 220 * kYard, kLength},
    {L"league", 3 * kMile, kLength},
    {L"cable", kNauticalMile / 10, kLength},
    {L"nautical_mile nmi", kNauticalMile, kLength},
    {L"survey_foot survey_feet us_survey_foot us_survey_feet", kSurveyFoot, kLength},
    {L"survey_mile us_survey_mile statute_mile", 5280 * kSurveyFoot, kLength},
    {L"astronomical_unit au", kAstronomicalUnit, kLength},
    {L"light_year lightyear ly", kLightYear, kLength},
    {L"parsec pc", kAstronomicalUnit * 648000 / kPi, kLength},

    {L"are", 100, kArea},
    {L"hectare ha", 1e4L, kArea},
    {L"acre", kAcre, kArea},
    {L"rood", kAcre / 4, kArea},
    {L"circular_mil", kPi / 4 * kInch* kInch / 1000000, kArea},

    {L"liter litre l", kLiter, kVolume, true},
    {L"milliliter millilitre ml cc", 1e-3L * kLiter, kVolume},
    {L"centiliter centilitre cl", 1e-2L * kLiter, kVolume},
    {L"deciliter decilitre dl", 1e-1L * kLiter, kVolume},
    {L"hectoliter hectolitre hl", 1e2L * kLiter, kVolume},
    {L"stere", 1, kVolume},
    {L"gallon gal us_gallon", kGallon, kVolume},
    {L"quart qt us_quart", kGallon / 4, kVolume},
    {L"pint us_pint", kGallon / 8, kVolume},
    {L"cup", kGallon / 16, kVolume},
    {L"gill", kGallon / 32, kVolume},
    {L"fluid_ounce fl_oz floz", kFluidOunce, kVolume},
    {L"tablespoon tbsp", kFluidOunce / 2, kVolume},
    {L"teaspoon tsp", kFluidOunce / 6, kVolume},
    {L"barrel bbl", 42 * kGallon, kVolume},
    {L"imperial_gallon imp_gallon imp_gal uk_gallon", kImperialGallon, kVolume},
    {L"imperial_quart", kImperialGallon / 4, kVolume},
    {L"imperial_pint", kImperialGallon / 8, kVolume},
    {L"imperial_fluid_ounce", kImperialGallon / 160, kVolume},
    {L"bushel bu", kBushel, kVolume},
    {L"peck", kBushel / 4, kVolume},
    {L"board_foot board_feet fbm", kCubicFoot / 12, kVolume},
    {L"cord", 128 * kCubicFoot, kVolume},
    {L"acre_foot acre_feet", kAcre* kFoot, kVolume},

    {L"gram gramme g gm", kGram, kMass, true},
    {L"kilogram kilogramme kg kilo", 1, kMass},
    {L"milligram milligramme mg", 1e-3L * kGram, kMass},
    {L"microgram microgramme ug \u00b5g \u03bcg", 1e-6L * kGram, kMass},
    {L"tonne metric_ton t", 1000, kMass, true},
    {L"pound lb lbm pound_mass", kPound, kMass},
    {L"ounce oz", kPound / 16, kMass},
    {L"dram", kPound / 256, kMass},
    {L"grain gr", kGrain, kMass},
    {L"troy_ounce ozt", 480 * kGrain, kMass},
    {L"troy_pound", 5760 * kGrain, kMass},
    {L"pennyweight dwt", 24 * kGrain, kMass},
    {L"carat", 0.2L * kGram, kMass},
    {L"stone", 14 * kPound, kMass},
    {L"hundredweight cwt", 100 * kPound, kMass},
    {L"ton short_ton", 2000 * kPound, kMass},
    {L"long_ton", 2240 * kPound, kMass},
    {L"slug", kPoundForce / kFoot, kMass},

    {L"second sec s", 1, kTime, true},
    {L"millisecond msec ms", 1e-3L, kTime},
    {L"minute min", kMinute, kTime},
    {L"hour hr h", kHour, kTime},
    {L"day", kDay, kTime},
    {L"week wk", 7 * kDay, kTime},
    {L"fortnight", 14 * kDay, kTime},
    {L"month", kYear / 12, kTime},
    {L"year yr", kYear, kTime},
    {L"decade", 10 * kYear, kTime},
    {L"century", 100 * kYear, kTime},
    {L"hertz hz cps", 1, kFrequency, true},
    {L"khz", 1e3L, kFrequency},
    {L"mhz", 1e6L, kFrequency},

    {L"kelvin k deg_k degk", 1, kTemperature, false, 273.15},
    {L"celsius centigrade c deg_c degc \u00b0c degree_celsius degrees_celsius degree_c degrees_c",
     1, kTemperature, false, 0},
    {L"fahrenheit f deg_f degf \u00b0f degree_fahrenheit degrees_fahrenheit degree_f degrees_f",
     5 / 9.0L, kTemperature, false, 32},
    {L"rankine deg_r degr \u00b0r degree_rankine degrees_rankine", 5 / 9.0L, kTemperature, false,
     491.67},

    {L"radian rad", 1, kAngle, true},
    {L"degree deg \u00b0", kDegree, kAngle},
    {L"arcminute arcmin arc_minute minute_of_arc minutes_of_arc", kDegree / 60, kAngle},
    {L"arcsecond arcsec arc_second second_of_arc seconds_of_arc", kDegree / 3600, kAngle},
    {L"grad grade gradian gon", kPi / 200, kAngle},
    {L"quadrant right_angle", kPi / 2, kAngle},
    {L"circle turn revolution rev", 2 * kPi, kAngle},
    {L"rpm", 2 * kPi / kMinute, kAngle / kTime},
    {L"steradian sr", 1, kAngle.power(2)},

    {L"mph", kMile / kHour, kSpeed},
    {L"kph kmh", 1000 / kHour, kSpeed},
    {L"fpm", kFoot / kMinute, kSpeed},
    {L"fps", kFoot, kSpeed},
    {L"mps", 1, kSpeed},
    {L"knot kt", kNauticalMile / kHour, kSpeed},

    {L"cfm", kCubicFoot / kMinute, kFlow},
    {L"cfs cusec", kCubicFoot, kFlow},
    {L"cfh", kCubicFoot / kHour, kFlow},
    {L"cms", 1, kFlow},
    {L"cmm", 1 / kMinute, kFlow},
    {L"cmh", 1 / kHour, kFlow},
    {L"lps", kLiter, kFlow},
    {L"lpm", kLiter / kMinute, kFlow},
    {L"lph", kLiter / kHour, kFlow},
    {L"gpm", kGallon / kMinute, kFlow},
    {L"gph", kGallon / kHour, kFlow},
    {L"gpd", kGallon / kDay, kFlow},
    {L"mgd", 1000000 * kGallon / kDay, kFlow},
    {L"igpm", kImperialGallon / kMinute, kFlow},

    {L"newton n", 1, kForce, true},
    {L"kn", 1e3L, kForce},
    {L"dyne dyn", 1e-5L, kForce},
    {L"pound_force lbf", kPoundForce, kForce},
    {L"ounce_force ozf", kPoundForce / 16, kForce},
    {L"ton_force tonf", 2000 * kPoundForce, kForce},
    {L"kip", 1000 * kPoundForce, kForce},
    {L"poundal pdl", kPound* kFoot, kForce},
    {L"kilogram_force kgf kilopond kp", kGravity, kForce},

    {L"pascal pa", 1, kPressure, true},
    {L"hpa", 1e2L, kPressure},
    {L"kpa", 1e3L, kPressure},
    {L"mpa", 1e6L, kPressure},
    {L"bar", 1e5L, kPressure, true},
    {L"mbar", 1e2L, kPressure},
    {L"atmosphere atm", 101325, kPressure},
    {L"technical_atmosphere", kGravity * 1e4L, kPressure},
    {L"torr", 101325 / 760.0L, kPressure},
    {L"psi", kPsi, kPressure},
    {L"ksi", 1000 * kPsi, kPressure},
    {L"psf", kPoundForce / kSquareFoot, kPressure},
    {L"inwg inwc inh2o in_wg in_wc in_w_g in_w_c in_h2o inch_of_water inches_of_water in_of_water "
     L"inch_water_gauge "
     L"inches_water_gauge inch_water_column inches_water_column",
     kInch* kMeterOfWater, kPressure},
    {L"ftwg ftwc fth2o ft_wg ft_wc ft_h2o foot_of_water feet_of_water ft_of_water",
     kFoot* kMeterOfWater, kPressure},
    {L"mmwg mmwc mmh2o mm_wg mm_wc mm_h2o millimeter_of_water millimeters_of_water mm_of_water",
     1e-3L * kMeterOfWater, kPressure},
    {L"mwg mwc mh2o m_wg m_wc m_h2o meter_of_water meters_of_water", kMeterOfWater, kPressure},
    {L"inhg in_hg inch_of_mercury inches_of_mercury", kInch* kMeterOfMercury, kPressure},
    {L"mmhg mm_hg millimeter_of_mercury millimeters_of_mercury", 1e-3L * kMeterOfMercury,
     kPressure},

    {L"joule j", 1, kEnergy, true},
    {L"kj", 1e3L, kEnergy},
    {L"mj", 1e6L, kEnergy},
    {L"gj", 1e9L, kEnergy},
    {L"wh", kHour, kEnergy},
    {L"kwh", 1e3L * kHour, kEnergy},
    {L"mwh", 1e6L * kHour, kEnergy},
    {L"calorie cal", kCalorie, kEnergy, true},
    {L"kcal", 1e3L * kCalorie, kEnergy},
    {L"btu british_thermal_unit", kBtu, kEnergy},
    {L"kbtu mbtu", 1e3L * kBtu, kEnergy},
    {L"mmbtu", 1e6L * kBtu, kEnergy},
    {L"therm", 1e5L * kBtu, kEnergy},
    {L"quad", 1e15L * kBtu, kEnergy},
    {L"foot_pound foot_pound_force ft_lb ft_lbf", kFoot* kPoundForce, kEnergy},
    {L"inch_pound inch_pound_force in_lb in_lbf", kInch* kPoundForce, kEnergy},
    {L"ton_hour ton_hr", 12000 * kBtu, kEnergy},
    {L"erg", 1e-7L, kEnergy},
    {L"electronvolt ev", 1.602176634e-19L, kEnergy, true},

    {L"watt w", 1, kPower, true},
    {L"kw kva", 1e3L, kPower},
    {L"mw mva", 1e6L, kPower},
    {L"gw", 1e9L, kPower},
    {L"va", 1, kPower},
    {L"btuh", kBtu / kHour, kPower},
    {L"mbh kbtuh mbtuh", 1e3L * kBtu / kHour, kPower},
    {L"mmbtuh", 1e6L * kBtu / kHour, kPower},
    {L"horsepower hp", kHorsepower, kPower},
    {L"metric_horsepower ps", 75 * kGravity, kPower},
    {L"boiler_horsepower bhp", 33475 * kBtu / kHour, kPower},
    {L"ton_of_refrigeration tons_of_refrigeration ton_refrigeration tons_refrigeration "
     L"refrigeration_ton rton tr",
     12000 * kBtu / kHour, kPower},

    {L"ampere amp a", 1, kCurrent, true},
    {L"ma", 1e-3L, kCurrent},
    {L"coulomb", 1, kCurrent* kTime, true},
    {L"volt v", 1, kVoltage, true},
    {L"kv", 1e3L, kVoltage},
    {L"mv", 1e-3L, kVoltage},
    {L"ohm", 1, kVoltage / kCurrent, true},
    {L"siemens", 1, kCurrent / kVoltage, true},
    {L"farad", 1, kCurrent* kTime / kVoltage, true},
    {L"henry", 1, kVoltage* kTime / kCurrent, true},
    {L"weber", 1, kVoltage* kTime, true},
    {L"tesla", 1, kVoltage* kTime / kArea, true},

    {L"candela candle cd", 1, kLuminosity, true},
    {L"lumen lm", 1, kLuminosity* kAngle.power(2), true},
    {L"lux lx", 1, kLuminosity* kAngle.power(2) / kArea, true},
    {L"footcandle foot_candle fc", 1 / kSquareFoot, kLuminosity* kAngle.power(2) / kArea},

    {L"poise", 0.1L, kPressure* kTime, true},
    {L"stokes stoke", 1e-4L, kArea / kTime, true},
    {L"clo", 0.155L, kArea* kTemperature / kPower},
};

using UnitIndex = std::unordered_map<std::wstring_view, const Unit*>;

UnitIndex makeIndex() {
    UnitIndex index;
    for (const Unit& unit : kUnits) {
        std::wstring_view names = unit.names;
        while (!names.empty()) {
            const size_t end = std::min(names.find(L' '), names.size());
            index.emplace(names.substr(0, end), &unit);
            names.remove_prefix(std::min(end + 1, names.size()));
        }
    }
    return index;
}

const Unit* findExactly(std::wstring_view name) {
    static const UnitIndex index = makeIndex();
    const auto found = index.find(name);
    return found == index.end() ? nullptr : found->second;
}

}  // namespace

std::span<const Unit> allUnits() {
    return kUnits;
}

const Unit* findUnit(std::wstring_view name) {
    if (const Unit* unit = findExactly(name)) return unit;
    // Of one letter there is no plural: "cs" is no temperature.
    if (name.size() < 3 || !name.ends_with(L's')) return nullptr;
    if (name.ends_with(L"ies")) {
        const std::wstring singular = std::wstring(name.substr(0, name.size() - 3)) + L'y';
        if (const Unit* unit = findExactly(singular)) return unit;
    }
    if (const Unit* unit = findExactly(name.substr(0, name.size() - 1))) return unit;
    return name.ends_with(L"es") ? findExactly(name.substr(0, name.size() - 2)) : nullptr;
}

}  // namespace sg
