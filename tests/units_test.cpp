#include "tvncommon/units.hpp"

#include "tvncommon/error.hpp"

#include <gtest/gtest.h>

namespace {

using namespace units;

class Units : public testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
};

TEST_F(Units, SystemsByHandle) {
    for (std::int32_t h = 0; h < 10; ++h) {
        UnitSystem system;
        init(system, h);
        EXPECT_EQ(handle(system), h);
        EXPECT_EQ(equalsComp(system, UnitSystem{7}), h == 7);
        EXPECT_EQ(notEqualsComp(system, UnitSystem{7}), h != 7);
        setBaseUnits(h);
        // What the name says must be what the labels show.
        const std::string name = toString(system), length = getDerivedUnit("L");
        EXPECT_EQ(length, name.starts_with("kilogram-centimeter-") ? "cm" : "m");
        const std::string time = name.substr(name.rfind('-') + 1);
        EXPECT_EQ(getDerivedUnit("T"), time == "minute" ? "min" : time.substr(0, 1)) << name;
    }
    EXPECT_EQ(toString(UnitSystem{3}), "kilogram-meter-day");
    EXPECT_EQ(toString(UnitSystem{7}), "kilogram-centimeter-day");
    EXPECT_EQ(toString(UnitSystem{8}), "kilogram-centimeter-hour");
}

TEST_F(Units, UnknownSystemsEndTheRun) {
    setBaseUnits(3);
    for (const std::int32_t h : {-1, 10, 2147483647, -2147483647 - 1}) {
        UnitSystem system{3};
        testing::internal::CaptureStderr();
        EXPECT_THROW(init(system, h), error::RunEnded);
        EXPECT_THROW(toString(UnitSystem{h}), error::RunEnded);
        EXPECT_THROW(setBaseUnits(h), error::RunEnded);
        const std::string banners = testing::internal::GetCapturedStderr();
        for (const char* text : {"UnitSystem: initialization failed: unknown unit system\n",
                                 "UnitSystem: conversion to string failed: unknown unit system\n",
                                 "setBaseUnits: unknown unit system\n"})
            EXPECT_NE(banners.find(text), std::string::npos) << text;
        EXPECT_EQ(system.handle, 3);
        EXPECT_EQ(parseUnits("T"), "(d)");
    }
}

TEST_F(Units, Labels) {
    struct Label {
        std::string_view expression, meterSecond, centimeterDay;
    };
    const Label labels[] = {
        {"", "", ""},
        {" \t ", "", ""},
        {" 1 ", "(-)", "(-)"},
        {"1 * L", "(1 m)", "(1 cm)"},
        {"K * N", "(K mol)", "(K mol)"},
        {"l*m*t", "(m kg s)", "(cm kg d)"},
        {"L^-1/3 * T", "(m^-1/3 s)", "(cm^-1/3 d)"},
        {"Nc * L^-2\t* T^-1", "(Nc m^-2 s^-1)", "(Nc cm^-2 d^-1)"},
        {"M ** L", "(kg m)", "(kg cm)"},
        {"*L*", "(m)", "(cm)"},
        {"**", "(-)", "(-)"},
        {"L^0", "(-)", "(-)"},
        {"L^0.0 * T", "(s)", "(d)"},
        {"L^1.0", "(m)", "(cm)"},
        {"L^1/2", "(m)", "(cm)"},
        {"L^1.00000000001", "(m)", "(cm)"}, // no different from 1 in single precision
        {"L^/2", "(m^/2)", "(cm^/2)"},
        {"L^", "(m)", "(cm)"},
        {"^2", "(^2)", "(^2)"},
        {R"(\m * \L^2 * \Lx * \)", R"((m L^2 \Lx \))", R"((m L^2 \Lx \))"},
        {"L/T", "(L/T)", "(L/T)"},
    };
    for (const Label& label : labels) {
        setBaseUnits(0);
        EXPECT_EQ(parseUnits(label.expression), label.meterSecond) << label.expression;
        setBaseUnits(7);
        EXPECT_EQ(parseUnits(label.expression), label.centimeterDay) << label.expression;
    }
    setTempUnitsToC();
    EXPECT_EQ(parseUnits("K^-1 * L"), "(deg C^-1 cm)");
    setTempUnitsToK();
    EXPECT_EQ(parseUnits("K"), "(K)");
    EXPECT_EQ(getDerivedUnit("T  "), "d");
}

TEST_F(Units, ExponentsThatAreNoNumbersEndTheRun) {
    for (const char* expression : {"L^x", "L^2^3", "L^1e99", "L^\xff", "L^\r"}) {
        testing::internal::CaptureStderr();
        EXPECT_THROW(parseUnits(expression), error::RunEnded) << expression;
        EXPECT_NE(testing::internal::GetCapturedStderr().find("Error number: "), std::string::npos);
    }
}

} // namespace
