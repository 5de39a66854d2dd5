#include "stored_config.h"

#include "kernel.h"
#include "model/fabric/stored_config.h"

namespace driver {
namespace {

constexpr wchar_t kServices[] = L"\\Registry\\Machine\\SYSTEM\\CurrentControlSet\\Services";
constexpr char kParameters[] = "Parameters";
constexpr char kSharedKey[] = "Device0";  // of the layout of value names
constexpr char kDriverKey[] = "Device";
constexpr char kDriverParameter[] = "DriverParameter";
constexpr uint32_t kWwnText = 24;
constexpr ULONG kLongestValue = 1u << 20;

// A registry value, whatever its length.
class Value {
  public:
    Value(HANDLE key, const char* prefix, const char* suffix) {
        ObjectName name(L"", prefix, suffix);
        ULONG length = 0;
        if (key == nullptr) {
            return;
        }
        ZwQueryValueKey(key, name.Get(), KeyValuePartialInformation, nullptr, 0, &length);
        if (length == 0 || length > kLongestValue) {
            return;
        }
        value_ = static_cast<KEY_VALUE_PARTIAL_INFORMATION*>(Allocate(length));
        if (value_ != nullptr &&
            !NT_SUCCESS(ZwQueryValueKey(key, name.Get(), KeyValuePartialInformation, value_, length,
                                        &length))) {
            Release(value_);
            value_ = nullptr;
        }
    }
    ~Value() {
        if (value_ != nullptr) {
            Release(value_);
        }
    }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    std::span<const uint8_t> Block() const {
        return Is(REG_BINARY) ? std::span<const uint8_t>(value_->Data, value_->DataLength)
                              : std::span<const uint8_t>();
    }
    // A text's first byte of each character: those that mean anything have no more.
    std::string_view Text() {
        if (!Is(REG_SZ)) {
            return {};
        }
        auto* text = reinterpret_cast<char*>(value_->Data);
        const ULONG length = value_->DataLength / sizeof(wchar_t);
        for (ULONG at = 0; at < length; ++at) {
            text[at] = text[at * sizeof(wchar_t)];
        }
        return {text, length != 0 && text[length - 1] == 0 ? length - 1 : length};
    }
    uint32_t Number() const {
        uint32_t number = 0;
        if (Is(REG_DWORD) && value_->DataLength == sizeof number) {
            RtlCopyMemory(&number, value_->Data, sizeof number);
        }
        return number;
    }

  private:
    bool Is(ULONG type) const { return value_ != nullptr && value_->Type == type; }

    KEY_VALUE_PARTIAL_INFORMATION* value_ = nullptr;
};

bool OpenKey(HANDLE parent, ObjectName& name, Key& key) {
    OBJECT_ATTRIBUTES attributes = AttributesOf(parent, name.Get());
    return NT_SUCCESS(ZwOpenKey(key.Receive(), KEY_READ, &attributes));
}

void WriteWwn(const uint8_t (&name)[8], char (&text)[kWwnText]) {
    constexpr char kDigits[] = "0123456789abcdef";
    char* out = text;
    for (const uint8_t byte : name) {
        *out++ = kDigits[byte >> 4];
        *out++ = kDigits[byte & 15];
        *out++ = '-';
    }
    text[kWwnText - 1] = 0;
}

bool OpenParameters(vxemu::Model& model, uint32_t port, Key& parameters) {
    Key services;
    Key service;
    ObjectName servicesName(kServices);
    ObjectName serviceName(L"", model.DriverName(port));
    ObjectName parametersName(L"", kParameters);
    return OpenKey(nullptr, servicesName, services) &&
           OpenKey(services.Get(), serviceName, service) &&
           OpenKey(service.Get(), parametersName, parameters);
}

// A key that is not there has no values.
void ApplyStoreBelow(HANDLE parameters, vxemu::Model& model, uint32_t port) {
    const bool valueNames = model.KeepsValueNames(port);
    char wwn[kWwnText];
    WriteWwn(model.PortName(port), wwn);
    Key driver;
    Key key;
    ObjectName driverName(L"", kDriverKey);
    ObjectName keyName(L"", valueNames ? kSharedKey : wwn);
    OpenKey(parameters, driverName, driver);
    OpenKey(parameters, keyName, key);
    Value driverParameter(driver.Get(), "", kDriverParameter);
    const char* prefix = valueNames ? wwn : "";
    const auto value = [&](const char* inSubkey, const char* inValueName) {
        return Value(key.Get(), prefix, valueNames ? inValueName : inSubkey);
    };
    const Value targets = value("Data", "\\Data");
    const Value luns = value("LunData", "\\LunData");
    vxemu::StoredConfig stored = {};
    stored.parameters = driverParameter.Text();
    stored.hasChecks = !valueNames;
    stored.length = value("Length", "\\Length").Number();
    stored.version = value("Version", "\\Version").Number();
    stored.checksum = value("Checksum", "\\Checksum").Number();
    stored.targets = targets.Block();
    stored.lunLength = value("LunLength", "\\LunLength").Number();
    stored.luns = luns.Block();
    model.ApplyStore(port, stored);
}

}  // namespace

void ApplyStore(vxemu::Model& model, uint32_t port) {
    Key parameters;
    if (OpenParameters(model, port, parameters)) {
        ApplyStoreBelow(parameters.Get(), model, port);
    }
}

}  // namespace driver
