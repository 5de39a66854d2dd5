
#include "frame/driver_parameters.h"
#include "support/library_fixture.h"

namespace {

using namespace support;

const std::string kKey = "SYSTEM\\CurrentControlSet\\Services\\vxfc2\\Parameters\\Device";

class DriverParametersTest : public testing::Test {
  protected:
    void Have(std::string_view text) { registry.SetText(kKey, "DriverParameter", text); }
    std::string Stored() { return registry.Read(kKey, "DriverParameter").Text(); }
    std::optional<std::string> Value(const char* name, const char* driver = "vxfc2") {
        const char* const value = frame::DriverParameter(driver, name);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    }
    static HX_STATUS Set(const char* name, const char* value) {
        return frame::SetDriverParameter("vxfc2", name, value);
    }

    ScratchRegistry registry;
};

TEST_F(DriverParametersTest, Lookup) {
    EXPECT_EQ(std::nullopt, Value("x")) << "no key";
    Have("x=1;smartsanhp=1");
    EXPECT_EQ("1", Value("smartsanhp"));
    EXPECT_EQ("1", Value("SMARTSANHP"));
    EXPECT_EQ(std::nullopt, Value("smartsan"));
    EXPECT_EQ(std::nullopt, Value("smartsanhp2"));
    EXPECT_EQ(std::nullopt, Value("artsanhp"));
    EXPECT_EQ("1", Value("x"));
    EXPECT_EQ(std::nullopt, Value("1"));
    EXPECT_EQ("1", Value("x", "vxfc2.sys"));
    EXPECT_EQ("1", Value("x", "vxfc2.a.b"));
    EXPECT_EQ(std::nullopt, Value("x", "vxfc1"));
    EXPECT_EQ(std::nullopt, Value("x", std::string(5000, 'v').c_str()));

    Have(" ; a=1 ;; b = 2 A=3 UItest=0x10;c=;c=9;d=x=y;e");
    EXPECT_EQ("1", Value("a")) << "the first match counts";
    EXPECT_EQ(std::nullopt, Value("b")) << "the name is not followed by the equals sign";
    EXPECT_EQ("0x10", Value("uiTEST"));
    EXPECT_EQ(std::nullopt, Value("c")) << "an empty value is none, whatever follows";
    EXPECT_EQ("x=y", Value("d"));
    EXPECT_EQ(std::nullopt, Value("e"));
    // A tab does not separate.
    Have("a=1\tb=2");
    EXPECT_EQ("1\tb=2", Value("a"));
}

TEST_F(DriverParametersTest, Numbers) {
    Have("a=17;b=-5;c=12abc;d=abc;e=0x10");
    const std::pair<const char*, int32_t> rows[] = {{"a", 17}, {"b", -5}, {"c", 12},
                                                    {"d", 0},  {"e", 0},  {"f", -1}};
    for (const auto& [name, number] : rows) {
        EXPECT_EQ(number, frame::DriverParameterNumber("vxfc2", name)) << name;
    }
}

TEST_F(DriverParametersTest, ValuesThatAreNoTexts) {
    registry.SetRaw(kKey, "DriverParameter", REG_BINARY, "a=1", 4);
    EXPECT_EQ(std::nullopt, Value("a"));
    registry.SetRaw(kKey, "DriverParameter", REG_SZ, "a=1;b=2", 7);  // no terminator
    EXPECT_EQ("2", Value("b"));
    registry.SetRaw(kKey, "DriverParameter", REG_SZ, "", 0);
    EXPECT_EQ(std::nullopt, Value("a"));
}

TEST_F(DriverParametersTest, SetReplacesAppendsAndRemoves) {
    EXPECT_EQ(0u, Set("a", nullptr));
    EXPECT_FALSE(registry.HasKey(kKey)) << "nothing to remove, nothing to make";
    EXPECT_EQ(0u, Set("a", "1"));
    EXPECT_EQ("a=1", Stored());
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), registry.Read(kKey, "DriverParameter").type);
    EXPECT_EQ(4u, registry.Read(kKey, "DriverParameter").bytes.size()) << "terminated";

    struct Row {
        const char* before;
        const char* name;
        const char* value;
        const char* after;
    };
    const Row rows[] = {
        {"x=1;y=2;z=3", "y", "7", "x=1;y=7;z=3"},
        {"x=1 y=2; z=3", "w", "7", "x=1;y=2;z=3;w=7"},
        {"x=1;y=2;z=3", "x", nullptr, "y=2;z=3"},
        {"x=1;y=2;z=3", "z", nullptr, "x=1;y=2"},
        {"x=1", "x", nullptr, ""},
        {"x=1;y=2", "w", nullptr, "x=1;y=2"},
        {"X=1;x=2", "x", "5", "x=5;x=2"},
        {"X=1;x=2", "x", nullptr, "x=2"},
        {"smartsanhp=0", "smartsan", "1", "smartsanhp=0;smartsan=1"},
        {"smartsan=0", "smartsanhp", "1", "smartsan=0;smartsanhp=1"},
        {"flag;x=1", "flag", "1", "flag;x=1;flag=1"},
        {";; ;", "x", "1", "x=1"},
    };
    for (const Row& row : rows) {
        Have(row.before);
        EXPECT_EQ(0u, Set(row.name, row.value));
        EXPECT_EQ(row.after, Stored()) << row.before << " " << row.name;
    }
}

TEST_F(DriverParametersTest, NothingIsLostOrDamaged) {
    // Far beyond what a reader's buffer holds.
    std::string text;
    for (int i = 0; i < 500; ++i) {
        text += "parameter" + std::to_string(i) + "=" + std::to_string(i) + ";";
    }
    text.pop_back();
    Have(text);
    EXPECT_EQ(0u, Set("smartsanhp", "1"));
    EXPECT_EQ(text + ";smartsanhp=1", Stored());
    EXPECT_EQ(0u, Set("smartsanhp", nullptr));
    EXPECT_EQ(text, Stored());

    // Longer than can be changed: refused and left alone.
    const std::string huge = "a=" + std::string(70000, 'x');
    Have(huge);
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, Set("b", "1"));
    EXPECT_EQ(huge, Stored());

    // A value of another type is not a parameter string.
    registry.SetRaw(kKey, "DriverParameter", REG_DWORD, "\1\0\0\0", 4);
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, Set("b", "1"));
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, Set("b", nullptr));
    EXPECT_EQ(static_cast<DWORD>(REG_DWORD), registry.Read(kKey, "DriverParameter").type);

    Have("x=1");
    const std::pair<const char*, const char*> refused[] = {
        {"", "1"}, {"a b", "1"}, {"a;b", "1"},  {"a=b", "1"},
        {"a", ""}, {"a", "1 2"}, {"a", "1;x=2"}};
    for (const auto& [name, value] : refused) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, Set(name, value)) << name;
    }
    EXPECT_EQ("x=1", Stored());
}

}  // namespace
