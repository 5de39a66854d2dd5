// Queries for lists: page by page, whatever the pages say of themselves.
#include <functional>

#include "support/query_fixture.h"

namespace {

using namespace support;

// Of every list with a total: where its pages say what, and how it is asked for.
struct ListKind {
    const char* name;
    transport::Command command;
    uint32_t head, entry, perPage;
    uint32_t totalAt, countAt;
    uint32_t width;  // of both, in bytes
    uint32_t most;
    uint32_t (*firstOf)(const Bytes& request);
    HX_STATUS (*run)(uint32_t handle, void* list, uint32_t* count);
};

constexpr DESTINATIONADDRESS kController = {HX_ADDRESS_BUS_TARGET, {1, 2, 3, 4, 5, 6, 7, 8}, 7};

const ListKind kLists[] = {
    {"remote ports", command::RemotePortInfo, 32, 128, 256, 4, 12, 4, 65536,
     [](const Bytes& request) { return Word32(request, 4); },
     [](uint32_t h, void* list, uint32_t* count) {
         return HXGetRemotePortInfo(h, static_cast<HX_REMOTE_PORT*>(list), count);
     }},
    {"virtual ports", command::NpivAttributes, 56, 56, 64, 2, 6, 2, 65535,
     [](const Bytes& request) { return Word32(request, 8); },
     [](uint32_t h, void* list, uint32_t* count) {
         return HXGetNPIVAttributes(h, nullptr, static_cast<HX_VIRTUAL_PORT*>(list), count);
     }},
    {"NVMe ports", command::NvmeInfo, 16, 64, 64, 4, 12, 4, 65536,
     [](const Bytes& request) { return Word32(request, 4); },
     [](uint32_t h, void* list, uint32_t* count) {
         return HXRGetNVMeInfo(h, static_cast<HX_NVME_PORT*>(list), count);
     }},
    {"namespaces", command::NvmeNamespaceInfo, 64, 64, 63, 4, 12, 4, 16128,
     [](const Bytes& request) { return request[11] * 63u; },
     [](uint32_t h, void* list, uint32_t* count) {
         return HXGetNVMeNSInfo(h, &kController, static_cast<HX_NVME_NAMESPACE*>(list), count);
     }},
};

// The entry's bytes in a page and in the caller's list: its number first.
Bytes EntryOf(uint32_t size, uint32_t index) {
    Bytes entry(size);
    Put32(entry, 0, index + 1);
    return entry;
}

class QueryListsTest : public QueryTest {
  protected:
    // What a page is like that begins with entry first.
    struct Page {
        uint32_t total;
        std::optional<uint32_t> claimed = {};  // of its entries
        std::optional<uint32_t> carried = {};
    };
    using Script = std::function<Page(uint32_t first)>;

    static Bytes BytesOfPage(const ListKind& kind, uint32_t first, const Page& page) {
        const uint32_t left = page.total > first ? page.total - first : 0;
        const uint32_t here = std::min(left, kind.perPage);
        Bytes bytes(kind.head);
        const uint32_t claimed = page.claimed.value_or(here);
        memcpy(&bytes[kind.totalAt], &page.total, kind.width);
        memcpy(&bytes[kind.countAt], &claimed, kind.width);
        for (uint32_t i = 0; i < page.carried.value_or(here); ++i) {
            Append(bytes, EntryOf(kind.entry, first + i));
        }
        return bytes;
    }
    void Answer(const ListKind& kind, Script script) {
        port->Forget();
        port->On(kind.command, [=](const SentRequest& request) {
            const uint32_t first = kind.firstOf(request.Data());
            return Reply{.data = BytesOfPage(kind, first, script(first))};
        });
    }
    // Asks with room for so many records; count is told the number and must become the other.
    void Expect(const ListKind& kind, uint32_t room, HX_STATUS status, uint32_t count,
                size_t requests) {
        GuardedBuffer list(room * kind.entry + 1);
        uint32_t found = room;
        EXPECT_EQ(status, kind.run(handle, room == 0 ? nullptr : list.Data() + 1, &found));
        EXPECT_EQ(count, found);
        EXPECT_EQ(requests, port->Requests(kind.command).size());
        if (status == HXMGT_SUCCESS || status == HXMGT_BUFFER_TOO_SMALL) {
            Bytes expected = {0xEE};
            for (uint32_t i = 0; i < std::min(room, count); ++i) {
                Append(expected, EntryOf(kind.entry, i));
            }
            ASSERT_EQ(expected, list.First(expected.size()));
        }
        EXPECT_EQ(0xEE, list[0]);
        port->Forget();
    }
};

TEST_F(QueryListsTest, PageByPage) {
    for (const ListKind& kind : kLists) {
        SCOPED_TRACE(kind.name);
        const uint32_t perPage = kind.perPage, total = 2 * perPage + 1;
        Answer(kind, [=](uint32_t) { return Page{total}; });
        Expect(kind, total, HXMGT_SUCCESS, total, 3);
        Expect(kind, total + 5, HXMGT_SUCCESS, total, 3);
        Expect(kind, total - 1, HXMGT_BUFFER_TOO_SMALL, total, 2);
        Expect(kind, perPage + 1, HXMGT_BUFFER_TOO_SMALL, total, 2);
        Expect(kind, perPage, HXMGT_BUFFER_TOO_SMALL, total, 1);
        Expect(kind, perPage - 3, HXMGT_BUFFER_TOO_SMALL, total, 1);
        Expect(kind, 0, HXMGT_BUFFER_TOO_SMALL, total, 1);
        Answer(kind, [=](uint32_t) { return Page{perPage}; });
        Expect(kind, perPage, HXMGT_SUCCESS, perPage, 1);
        Answer(kind, [=](uint32_t) { return Page{0}; });
        Expect(kind, 0, HXMGT_SUCCESS, 0, 1);
        Expect(kind, 4, HXMGT_SUCCESS, 0, 1);
        // As many as there can be, and one more.
        Answer(kind, [=](uint32_t) { return Page{kind.most}; });
        Expect(kind, 0, HXMGT_BUFFER_TOO_SMALL, kind.most, 1);
        Expect(kind, kind.most, HXMGT_SUCCESS, kind.most, (kind.most + perPage - 1) / perPage);
        if (kind.width == 4) {
            Answer(kind, [=](uint32_t) { return Page{kind.most + 1}; });
            Expect(kind, 7, HXMGT_DATA_UNDERRUN, 7, 1);
        }
    }
}

TEST_F(QueryListsTest, PagesThatLie) {
    for (const ListKind& kind : kLists) {
        SCOPED_TRACE(kind.name);
        const uint32_t perPage = kind.perPage, total = 2 * perPage + 1;
        const bool byNumber = kind.most == 16128;
        // More than it carries; a page of namespaces must be full.
        Answer(kind, [=](uint32_t first) {
            return first == 0 ? Page{total, ~0u, perPage - 1} : Page{total};
        });
        byNumber ? Expect(kind, total, HXMGT_DATA_UNDERRUN, total, 1)
                 : Expect(kind, total, HXMGT_SUCCESS, total, 3);
        // More than is left.
        Answer(kind, [=](uint32_t) { return Page{5, perPage, perPage}; });
        Expect(kind, 5, HXMGT_SUCCESS, 5, 1);
        // Nothing before the total is reached.
        for (const uint32_t room : {0u, total}) {
            Answer(kind, [=](uint32_t) { return Page{total, 0}; });
            Expect(kind, room, HXMGT_DATA_UNDERRUN, room, 1);
        }
        Answer(kind, [=](uint32_t first) {
            return first == 0 ? Page{total} : Page{total, perPage, 0};
        });
        Expect(kind, total, HXMGT_DATA_UNDERRUN, total, 2);
        // The latest total holds.
        Answer(kind, [=](uint32_t first) { return Page{first == 0 ? total : perPage + 2}; });
        Expect(kind, total, HXMGT_SUCCESS, perPage + 2, 2);
        Answer(kind, [=](uint32_t first) { return Page{first == 0 ? perPage + 1 : perPage / 2}; });
        Expect(kind, total, HXMGT_SUCCESS, perPage / 2, 2);
        Answer(kind, [=](uint32_t first) { return Page{first == 0 ? perPage + 1 : total}; });
        Expect(kind, total, HXMGT_SUCCESS, total, 3);
        // A head cut short says nothing.
        const Bytes whole = BytesOfPage(kind, 0, {3});
        for (const uint32_t length : {0u, kind.head - 1}) {
            port->On(kind.command, Reply{.data = Part(whole, 0, length)});
            Expect(kind, 3, HXMGT_DATA_UNDERRUN, 3, 1);
        }
        // Reply lengths that nobody filled.
        port->On(kind.command, Reply{.data = Part(whole, 0, kind.head), .responseLength = ~0u});
        uint32_t count = 3;
        GuardedBuffer list(3 * kind.entry);
        EXPECT_EQ(HXMGT_SUCCESS, kind.run(handle, list.Data(), &count)) << "they read as zero";
        EXPECT_TRUE(list.Holds(0));
        port->Forget();
        // Failures, of the first page and of a later one.
        for (const auto& [driver, status] : {std::pair(21u, HXMGT_DEVICE_NOT_READY),
                                             {16, HXMGT_DATA_UNDERRUN},
                                             {9, HXMGT_DEVICE_NOT_FOUND}}) {
            for (const uint32_t after : {0u, perPage}) {
                port->On(kind.command, [=, driver = driver](const SentRequest& request) {
                    const uint32_t first = kind.firstOf(request.Data());
                    return Reply{.status = first == after ? driver : 0,
                                 .data = BytesOfPage(kind, first, {total})};
                });
                Expect(kind, total, status, total, after == 0 ? 1 : 2);
            }
        }
    }
}

// What the requests hold beside the place, and what records promise.
TEST_F(QueryListsTest, RequestsAndRecords) {
    Bytes heads[] = {Bytes(32), Bytes(3640), Bytes(16), {5, 0, 1, 2, 3, 4, 5, 6, 7, 8, 7, 1}};
    const uint32_t placeAt[] = {4, 8, 4, 11};
    heads[0][0] = heads[2][0] = heads[1][12] = 1;  // version
    for (uint32_t i = 0; i < 4; ++i) {
        const ListKind& kind = kLists[i];
        if (i < 3) {
            Put32(heads[i], placeAt[i], kind.perPage);
        }
        Answer(kind, [=](uint32_t) { return Page{kind.perPage + 1}; });
        GuardedBuffer list((kind.perPage + 1) * kind.entry);
        uint32_t count = kind.perPage + 1;
        ASSERT_EQ(0u, kind.run(handle, list.Data(), &count));
        EXPECT_EQ(heads[i], port->Last().Data()) << kind.name;
    }
    Bytes page = Patterned(32 + 128);
    Put32(page, 4, 1);
    port->On(command::RemotePortInfo, Reply{.data = page});
    Guarded<HX_REMOTE_PORT> remote;
    uint32_t count = 1;
    ASSERT_EQ(0u, HXGetRemotePortInfo(handle, remote.Get(), &count));
    page.back() = 0;
    EXPECT_EQ(Part(page, 32, 128), Seen(remote)) << "its name ends, whatever the driver says";
}

TEST_F(QueryListsTest, AttributesOfVirtualPorts) {
    Bytes page = Patterned(56 + 2 * 56);
    Put16(page, 2, 2);
    port->On(command::NpivAttributes, Reply{.data = page});
    Bytes expected = Part(page, 0, 56);
    Put16(expected, 6, 2);
    Put32(expected, 8, 0);
    for (const auto& [room, status] :
         {std::pair(2u, HXMGT_SUCCESS), {1, HXMGT_BUFFER_TOO_SMALL}, {0, HXMGT_BUFFER_TOO_SMALL}}) {
        Guarded<HX_NPIV_ATTRIBUTES> attributes;
        GuardedBuffer ports(2 * 56);
        uint32_t count = room;
        EXPECT_EQ(status,
                  HXGetNPIVAttributes(handle, attributes.Get(),
                                      reinterpret_cast<HX_VIRTUAL_PORT*>(ports.Data()), &count));
        EXPECT_EQ(expected, Seen(attributes));
        EXPECT_TRUE(ports.Is(Part(page, 56, room * 56)));
    }
    uint32_t count = 2;
    HX_VIRTUAL_PORT ports[2];
    Fails(HXMGT_DATA_UNDERRUN, command::NpivAttributes, {.data = Part(page, 0, 56)},
          [&](HX_NPIV_ATTRIBUTES* x) { return HXGetNPIVAttributes(handle, x, ports, &count); });
    EXPECT_EQ(2u, count);
}

// No totals here: a page that is not full ends the list.
TEST_F(QueryListsTest, SecurePorts) {
    uint32_t total = 0;
    std::optional<uint32_t> claimed, carried;
    port->On(command::SecurePortInfo, [&](const SentRequest& request) {
        const Bytes data = request.Data();
        EXPECT_EQ(73u, data.size());
        EXPECT_EQ(data[0] == 0 ? Bytes(73) : EntryOf(72, Word32(data, 1) - 1),
                  data[0] == 0 ? data : Part(data, 1, 72));
        const uint32_t first = Word32(data, 1);
        const uint32_t here = carried.value_or(std::min(total - first, 84u));
        Bytes page = {static_cast<uint8_t>(claimed.value_or(here))};
        for (uint32_t i = 0; i < here; ++i) {
            Append(page, EntryOf(72, first + i));
        }
        return Reply{.data = page};
    });
    const ListKind kind = {"",
                           command::SecurePortInfo,
                           1,
                           72,
                           84,
                           0,
                           0,
                           1,
                           65536,
                           nullptr,
                           [](uint32_t h, void* list, uint32_t* count) {
                               return HXGetSecurePortInfo(h, static_cast<HX_SECURE_PORT*>(list),
                                                          count);
                           }};
    for (const auto& [ports, requests] :
         {std::pair(0u, 1u), {83, 1}, {84, 2}, {85, 2}, {65536, 781}}) {
        total = ports;
        Expect(kind, ports, HXMGT_SUCCESS, ports, requests);
        if (ports != 0) {
            Expect(kind, 1, ports == 1 ? HXMGT_SUCCESS : HXMGT_BUFFER_TOO_SMALL, ports, requests);
            Expect(kind, 0, HXMGT_BUFFER_TOO_SMALL, ports, requests);
        }
    }
    total = 65537;
    Expect(kind, 3, HXMGT_DATA_UNDERRUN, 3, 781);
    // One that names more than it carries is not the last; one that carries none says nothing.
    total = 60;
    claimed = 200;
    carried = 0;
    Expect(kind, 60, HXMGT_DATA_UNDERRUN, 60, 1);
    carried = 50;
    port->Next({.data = BytesOf(port->chip)});
    Bytes first = {84}, second = {10};
    for (uint32_t i = 0; i < 60; ++i) {
        Append(i < 50 ? first : second, EntryOf(72, i));
    }
    port->Next({.data = first});
    port->Next({.data = second});
    Expect(kind, 60, HXMGT_SUCCESS, 60, 2);
    for (const auto& [driver, status] :
         {std::pair(16u, HXMGT_DATA_UNDERRUN), {12, HXMGT_INVALID_SUBCODE}}) {
        port->On(command::SecurePortInfo, Reply{.status = driver, .data = first});
        Expect(kind, 60, status, 60, 1);
    }
    port->On(command::SecurePortInfo, Reply{});
    Expect(kind, 60, HXMGT_DATA_UNDERRUN, 60, 1);
}

TEST_F(QueryListsTest, SerdesLanes) {
    const auto run = [](uint32_t h, void* list, uint32_t* count) {
        return HXReadSerdesParams(h, static_cast<HX_SERDES_LANE*>(list), count);
    };
    const ListKind kind = {"", command::SerdesParameters, 8, 32, 16, 0, 4, 4, 16, nullptr, run};
    const auto answer = [&](uint32_t count, uint32_t carried) {
        Bytes reply(8);
        Put32(reply, 4, count);
        for (uint32_t i = 0; i < carried; ++i) {
            Append(reply, EntryOf(32, i));
        }
        port->On(command::SerdesParameters, Reply{.data = reply});
    };
    answer(16, 16);
    Expect(kind, 16, HXMGT_SUCCESS, 16, 1);
    Expect(kind, 15, HXMGT_BUFFER_TOO_SMALL, 16, 1);
    Expect(kind, 0, HXMGT_BUFFER_TOO_SMALL, 16, 1);
    answer(0, 16);
    Expect(kind, 4, HXMGT_SUCCESS, 0, 1);
    for (const auto& [count, carried] : {std::pair(17u, 16u), {~0u, 16}, {4, 3}, {1, 0}}) {
        answer(count, carried);
        Expect(kind, 16, HXMGT_DATA_UNDERRUN, 16, 1);
    }
    port->On(command::SerdesParameters, Reply{.status = 16, .data = Bytes(520)});
    Expect(kind, 16, HXMGT_DATA_UNDERRUN, 16, 1);
    port->On(command::SerdesParameters, Reply{.data = Bytes(7)});
    Expect(kind, 16, HXMGT_DATA_UNDERRUN, 16, 1);
}

// Each port has its own answers.
TEST_F(QueryListsTest, TwoPorts) {
    ScriptedPort* const ports[] = {port, &AddPort(4)};
    const uint32_t handles[] = {handle, Open(1)};
    for (uint32_t i = 0; i < 2; ++i) {
        ports[i]->On(command::RemotePortInfo, Reply{.data = BytesOfPage(kLists[0], 0, {3 + i})});
        ports[i]->On(command::LunQosEnable, Reply{.data = {static_cast<uint8_t>(i)}});
    }
    for (uint32_t i = 0; i < 2; ++i) {
        HX_REMOTE_PORT list[8];
        uint32_t count = 8;
        uint8_t enabled = 0xEE;
        EXPECT_EQ(0u, HXGetRemotePortInfo(handles[i], list, &count));
        EXPECT_EQ(3 + i, count);
        EXPECT_EQ(0u, HXGetLunQosEnable(handles[i], &enabled));
        EXPECT_EQ(i, enabled);
    }
}

}  // namespace
