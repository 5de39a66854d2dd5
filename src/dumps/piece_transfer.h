// Fetching a dump in pieces: the same protocol for every kind of dump.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include "dumps/dump_records.h"
#include "hxmgtapi.h"
#include "transport/requests.h"

namespace dumps {

// Asks for the whole size; head is the header to send, with length and offset 0.
template <class Query>
HX_STATUS QuerySize(uint32_t handle, transport::Command command,
                    const decltype(Query::header)& head, uint32_t& size) {
    Query query{};
    query.header = head;
    Query reply{};
    const HX_STATUS status = transport::Exchange(handle, command, query, reply);
    const bool tellsSize = status == HXMGT_SUCCESS || status == HXMGT_BUFFER_TOO_SMALL;
    size = tellsSize ? reply.header.length : 0;
    return status;
}

// Short pieces in a row, each less than was asked for and not the last, that end a retrieval.
inline constexpr uint32_t kMostShortPieces = 1000;

// How the offset of the next request grows: by what came, or by what was asked for.
enum class Advance { ByDelivered, ByAsked };

// Fetches size bytes into out; head is the header to send and takes the last reply's. A driver
// that delivers nothing, or next to nothing time and again, ends with HXMGT_DATA_UNDERRUN; what it
// claims beyond the reply that came, beyond the size asked for or beyond out is left out.
template <class Piece>
HX_STATUS FetchPieces(uint32_t handle, transport::Command command, decltype(Piece::header)& head,
                      uint32_t size, std::span<uint8_t> out, Advance advance) {
    const std::unique_ptr<Piece> request(new (std::nothrow) Piece{});
    const std::unique_ptr<Piece> piece(new (std::nothrow) Piece);
    if (request == nullptr || piece == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    request->header = head;
    request->header.length = kPieceBytes;
    uint32_t asked = 0;  // offset of the next request
    size_t received = 0;
    uint32_t shortPieces = 0;  // in a row
    while (asked < size) {
        request->header.offset = asked;
        uint32_t returned = 0;
        if (const HX_STATUS status =
                transport::SendExtended(handle, command.code, command.subCode, request.get(),
                                        sizeof *request, piece.get(), sizeof *piece, &returned);
            status != HXMGT_SUCCESS) {
            return status;
        }
        if (returned < sizeof head) {
            return HXMGT_DATA_UNDERRUN;
        }
        head = piece->header;
        const size_t delivered = std::min<size_t>(
            {piece->header.length, kPieceBytes, returned - sizeof head, out.size() - received});
        if (delivered == 0) {
            return HXMGT_DATA_UNDERRUN;
        }
        std::memcpy(out.data() + received, piece->data, delivered);
        received += delivered;
        const uint32_t step =
            advance == Advance::ByAsked ? kPieceBytes : static_cast<uint32_t>(delivered);
        asked = step < size - asked ? asked + step : size;
        shortPieces = delivered < kPieceBytes ? shortPieces + 1 : 0;
        if (shortPieces == kMostShortPieces && asked < size) {
            return HXMGT_DATA_UNDERRUN;
        }
    }
    return HXMGT_SUCCESS;
}

}  // namespace dumps
