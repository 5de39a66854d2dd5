// The installed emulated driver, running for the length of a suite of system tests.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/document.h"
#include "support/has.h"
#include "support/json_schema.h"
#include "support/program.h"

namespace system_test {

using json = support::Document;

class EmulatedDriver : public testing::Test {
  public:
    static void SetUpTestSuite() { StartDriver(); }
    static void TearDownTestSuite() { StopDriver(); }

  protected:
    // With the flash as delivered, whatever a test before has left.
    static void StartDriver(const std::string& profile = "lab") {
        const support::Ended started = Vxemu("start --fresh --profile " + profile);
        ASSERT_EQ(0u, started.exit) << started.err;
    }
    static void StopDriver() { EXPECT_EQ(0u, Vxemu("stop").exit); }

    void TearDown() override { EXPECT_EQ(0u, Vxemu("fault clear").exit); }

    static support::Ended Vxemu(const std::string& arguments) {
        return support::Run("vxemu.exe", arguments);
    }
    static support::Ended Vxmgr(const std::string& arguments) {
        return support::Run("vxmgr.exe", arguments);
    }

    // The one document of a command, held against its schema and exit code.
    static json Document(const std::string& arguments) {
        return DocumentOf(arguments, Vxmgr("--json " + arguments));
    }
    static json VxemuDocument(const std::string& arguments) {
        return DocumentOf(arguments, Vxemu("--json " + arguments));
    }
    static json DocumentOf(const std::string& arguments, const support::Ended& ended) {
        const json document = json::Parse(ended.out);
        EXPECT_TRUE(document.is_object()) << arguments << "\n" << ended.out << ended.err;
        if (!document.is_object()) {
            return {};
        }
        static support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
        for (const std::string& error : schemas.CheckEnvelope(document)) {
            ADD_FAILURE() << arguments << ": " << error;
        }
        EXPECT_EQ(document["exit"], ended.exit) << arguments;
        return document;
    }

    json ExitOf(const std::string& arguments) { return Document(arguments)["exit"]; }

    static void Fault(const std::string& rule) {
        ASSERT_EQ(0u, Vxemu("fault add " + rule).exit) << rule;
    }

    // What the driver says of a port, e.g. PortStatus("scsi:3")["event_delivery"].
    static json PortStatus(const std::string& port) {
        const json document = VxemuDocument("status");
        for (const json& row : document["result"]["ports"]) {
            if (row["port"] == port) {
                return row;
            }
        }
        ADD_FAILURE() << "the driver does not know " << port;
        return {};
    }

    // Waits until the driver says so of the port; false after some seconds.
    static bool PortReaches(const std::string& port, const std::string& key, const json& value) {
        for (int i = 0; i < 50; ++i) {
            if (PortStatus(port)[key] == value) {
                return true;
            }
            Sleep(100);
        }
        return false;
    }
};

// The flash is as delivered at the start of every test, and all files of a test are its own.
class FreshDriver : public EmulatedDriver {
  public:
    static void SetUpTestSuite() {}
    static void TearDownTestSuite() {}

  protected:
    void SetUp() override {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        StartDriver(profile_);
    }
    void TearDown() override {
        EmulatedDriver::TearDown();
        // A request of a program that was killed may hang in the driver for a while yet.
        support::Ended stopped = Vxemu("stop");
        for (int i = 0; i < 4 && stopped.exit == 7; ++i) {
            stopped = Vxemu("stop");
        }
        EXPECT_EQ(0u, stopped.exit) << stopped.err;
        std::filesystem::remove_all(folder_);
    }

    std::string File(const std::string& name) const { return (folder_ / name).string(); }
    std::string Quoted(const std::string& name) const { return " \"" + File(name) + "\""; }

    const std::filesystem::path folder_ = support::ScratchPath("-files");
    std::string profile_ = "lab";
};

}  // namespace system_test
