#include "tvncommon/units/units_conversion.hpp"

#include "tests/support/runs.hpp"
#include "tvncommon/io/file_units.hpp"

#include <array>
#include <cmath>

namespace {

using namespace units;

class Units : public runs::Files {};

TEST_F(Units, SystemsByHandle) {
    for (std::int32_t h = 0; h < 10; ++h) {
        UnitSystem system;
        init(system, h);
        EXPECT_EQ(handle(system), h);
        EXPECT_TRUE(equalsComp(system, {h}) && notEqualsComp(system, {h + 1}));
        setBaseUnits(h);
        // The labels must have the units of the name.
        const std::string name = toString(system), length = getDerivedUnit("L");
        EXPECT_EQ(length, name.starts_with("kilogram-centimeter-") ? "cm" : "m");
        const std::string time = name.substr(name.rfind('-') + 1);
        EXPECT_EQ(getDerivedUnit("T"), time == "minute" ? "min" : time.substr(0, 1)) << name;
    }
    EXPECT_EQ(toString(UnitSystem{3}), "kilogram-meter-day");
    EXPECT_EQ(toString(UnitSystem{8}), "kilogram-centimeter-hour");
}

TEST_F(Units, UnknownSystemsEndTheRun) {
    setBaseUnits(3);
    for (const std::int32_t h : {-1, 10}) {
        UnitSystem system{3};
        for (const std::string& ending : {runs::endingOf([&] { init(system, h); }),
                                          runs::endingOf([&] { toString(UnitSystem{h}); }),
                                          runs::endingOf([&] { setBaseUnits(h); })})
            EXPECT_THAT(ending, runs::HasSubstr("unknown unit system"));
        EXPECT_EQ(system.handle, 3);
        EXPECT_EQ(parseUnits("T"), "(d)");
    }
}

TEST_F(Units, LabelsAndInvalidExponents) {
    std::string report;
    for (const char* expression : {"", " 1 ", "l*m*t", "N * L^ * K", "L^-1/3 * T",
                                   "Nc * L^-2\t* T^-1", "M ** L", "L^0.0 * T", "L^1/2",
                                   "L^1.00000000001", // equal to 1 in single precision
                                   "L^/2", "^2", "\\m * \\L^2 * \\Lx * \\", "\\x", "L/T", "L^x",
                                   "L^2^3", "L^1e99", "L^\r"}) {
        report += expression;
        for (const std::int32_t system : {0, 7}) {
            setBaseUnits(system);
            std::string label;
            const std::string ending = runs::endingOf([&] { label = parseUnits(expression); });
            report += " | " + label + ending;
        }
        report += "\n";
    }
    sample_files::expectFile("unit_labels.txt", report);
    setTempUnitsToC();
    EXPECT_EQ(parseUnits("K^-1 * L"), "(deg C^-1 cm)");
    setTempUnitsToK();
    EXPECT_EQ(parseUnits("K"), "(K)");
}

TEST_F(Units, ConversionFromSI) {
    const SIUnits length{.length = 1}, time{.time = 1};
    const SIUnits density = divide(SIUnits{.mass = 1}, power_int(length, 3));
    const SIUnits manning = multiply(time, power_real_dr(length, -1.0 / 3));
    EXPECT_EQ(std::pair(density.mass, density.length), std::pair(1.0, -3.0));
    EXPECT_EQ(power_real(time, 0.1F).time, static_cast<double>(0.1F));
    const std::array<double, 10> seconds{1, 60, 3600,  86400, 31536000,
                                         1, 60, 86400, 3600,  31536000};
    for (std::int32_t h = 0; h < 10; ++h) {
        const double t = seconds[static_cast<std::size_t>(h)], l = h < 5 ? 1 : 100;
        EXPECT_DOUBLE_EQ(conversionFactor({h}, density), 1 / (l * l * l));
        EXPECT_DOUBLE_EQ(conversionFactor({h}, manning), 1 / std::cbrt(l) / t);
        double value = 7;
        convert({h}, value, divide(length, time));
        EXPECT_DOUBLE_EQ(value, 7 * l * t);
    }
    EXPECT_EQ(conversionFactor({10}, time), 1);
    EXPECT_EQ(conversionFactor({-1}, time), 1);
}

TEST_F(Units, SystemsInFiles) {
    for (const bool text : {false, true}) {
        int unit = file_units::getUnit();
        const int status = text ? io_layer::openTextReplace(unit, "file", io_layer::Flush::inBlocks)
                                : io_layer::openRecordsReplace(unit, "file");
        ASSERT_EQ(status, io_layer::ok);
        serialize({7}, unit);
        file_units::freeUnit(unit);
        unit = text ? file_units::openTextRead("file") : file_units::openRecordsRead("file");
        UnitSystem system;
        deserialize(system, unit);
        EXPECT_EQ(system.handle, 7);
        file_units::freeUnit(unit);
    }
    EXPECT_EQ(sample_files::get("file"), " 7\n");
    sample_files::put("file", "11\n");
    UnitSystem system;
    const int unit = file_units::openTextRead("file");
    runs::expectEnd("INPUT",
                    "UnitSystem: initialization failed: unknown unit system\nFile: file\n\n",
                    [&] { deserialize(system, unit); });
    const std::string message = "serialize failed: unassociated file unit\n";
    runs::expectEnd("FATAL", "UnitSystem: " + message, [&] { serialize(system, 1200); });
    runs::expectEnd("FATAL", "UnitSystem: de" + message, [&] { deserialize(system, 1200); });
}

} // namespace
