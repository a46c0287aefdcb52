// SPDX-License-Identifier: MIT
// A tiny line-oriented language that drives the region functions and prints what they return.
//
// The same source is compiled twice: against the platform's <windows.h> by region_reference.cpp,
// which writes the reference transcripts, and against <quillon/Region> by the tests, which run the
// same lines on libquillon_region and compare. Regions live in ten numbered slots.
//
//   rect S L T R B            CreateRectRgn                      -> "= 1" for a handle, "= 0" for null
//   recti S L T R B           CreateRectRgnIndirect              -> same
//   setrect S L T R B         SetRectRgn                         -> "= BOOL"
//   poly S MODE N X Y ...     CreatePolygonRgn, N points         -> handle or null
//   polypoly S MODE K C1..CK M X Y ...
//                             CreatePolyPolygonRgn, K counts, M points given
//   ext S L T R B ...         ExtCreateRegion from a well-formed RGNDATA of the rectangles
//   extraw S SIZE TYPE COUNT BYTES L T R B ...
//                             ExtCreateRegion with the header fields dwSize, iType, nCount and
//                             the byte count BYTES given as they are
//   combine D A B MODE        CombineRgn(D, A, B, MODE)          -> "= kind"
//   offset S DX DY            OffsetRgn                          -> "= kind"
//   data S                    GetRegionData: the sizes asked for without a buffer, the header,
//                             the return value for a buffer one byte too small, the rectangles
//   datasize S BYTES          GetRegionData with a large buffer but BYTES as its size -> "= ret"
//   box S                     GetRgnBox                          -> "= kind L T R B"
//   pt S X Y                  PtInRegion                         -> "= BOOL"
//   rin S L T R B             RectInRegion                       -> "= BOOL"
//   eq A B                    EqualRgn                           -> "= BOOL"
//   del S                     DeleteObject; the slot keeps the stale handle -> "= BOOL"
//   null S                    forgets the slot's handle (deleting it if still live): it is null
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

class RegionScript {
public:
    static constexpr int kSlots = 10;

    RegionScript() = default;
    RegionScript(const RegionScript&) = delete;
    RegionScript& operator=(const RegionScript&) = delete;
    ~RegionScript() { reset(); }

    // Deletes every region still held, without printing anything.
    void reset()
    {
        for (int i = 0; i < kSlots; ++i) {
            if (slot_[i] && live_[i]) DeleteObject(slot_[i]);
            slot_[i] = nullptr;
            live_[i] = false;
        }
    }

    // Runs one command and returns the lines it prints, each beginning with "= ".
    std::vector<std::string> run(const std::string& line)
    {
        std::istringstream in(line);
        std::string op;
        in >> op;
        args_.clear();
        std::string token;
        while (in >> token) args_.push_back(std::stoll(token));
        next_ = 0;
        out_.clear();

        if (op == "rect") {
            int s = slotArg();
            int l = intArg(), t = intArg(), r = intArg(), b = intArg();
            made(s, CreateRectRgn(l, t, r, b));
        } else if (op == "recti") {
            int s = slotArg();
            RECT rc = rectArg();
            made(s, CreateRectRgnIndirect(&rc));
        } else if (op == "setrect") {
            HRGN h = handleArg();
            int l = intArg(), t = intArg(), r = intArg(), b = intArg();
            print(SetRectRgn(h, l, t, r, b));
        } else if (op == "poly") {
            int s = slotArg();
            int mode = intArg();
            int n = intArg();
            std::vector<POINT> pts = pointArgs(remaining() / 2);
            made(s, CreatePolygonRgn(pts.empty() ? nullptr : pts.data(), n, mode));
        } else if (op == "polypoly") {
            int s = slotArg();
            int mode = intArg();
            int k = intArg();
            std::vector<INT> counts;
            for (int i = 0; i < k; ++i) counts.push_back(intArg());
            int m = intArg();
            std::vector<POINT> pts = pointArgs(m);
            made(s, CreatePolyPolygonRgn(pts.empty() ? nullptr : pts.data(),
                                         counts.empty() ? nullptr : counts.data(), k, mode));
        } else if (op == "ext" || op == "extraw") {
            int s = slotArg();
            std::int64_t size = 32, type = RDH_RECTANGLES, count = -1, bytes = -1;
            if (op == "extraw") {
                size = arg(), type = arg(), count = arg(), bytes = arg();
            }
            std::vector<RECT> rects;
            while (remaining() >= 4) rects.push_back(rectArg());
            if (count < 0) count = static_cast<std::int64_t>(rects.size());
            const std::size_t header = sizeof(RGNDATAHEADER);
            std::vector<std::uint64_t> store((header + 16 * rects.size() + 64) / 8 + 1, 0);
            RGNDATA* data = reinterpret_cast<RGNDATA*>(store.data());
            data->rdh.dwSize = static_cast<DWORD>(size);
            data->rdh.iType = static_cast<DWORD>(type);
            data->rdh.nCount = static_cast<DWORD>(count);
            data->rdh.nRgnSize = static_cast<DWORD>(16 * rects.size());
            data->rdh.rcBound = RECT{0, 0, 0, 0};
            // The rectangles start where dwSize says, as long as that lies in the buffer.
            std::size_t at = size >= 0 && size <= 64 ? static_cast<std::size_t>(size) : header;
            for (std::size_t i = 0; i < rects.size(); ++i)
                std::memcpy(reinterpret_cast<char*>(data) + at + 16 * i, &rects[i], 16);
            if (bytes < 0) bytes = static_cast<std::int64_t>(header + 16 * rects.size());
            made(s, ExtCreateRegion(nullptr, static_cast<DWORD>(bytes), data));
        } else if (op == "combine") {
            HRGN d = handleArg(), a = handleArg(), b = handleArg();
            print(CombineRgn(d, a, b, intArg()));
        } else if (op == "offset") {
            HRGN h = handleArg();
            int dx = intArg(), dy = intArg();
            print(OffsetRgn(h, dx, dy));
        } else if (op == "data") {
            dumpData(handleArg());
        } else if (op == "datasize") {
            HRGN h = handleArg();
            DWORD bytes = static_cast<DWORD>(arg());
            std::vector<std::uint64_t> store(bytes / 8 + 1024, 0);
            print(static_cast<long long>(
                GetRegionData(h, bytes, reinterpret_cast<RGNDATA*>(store.data()))));
        } else if (op == "box") {
            HRGN h = handleArg();
            RECT rc{-7, -7, -7, -7};
            int kind = GetRgnBox(h, &rc);
            print(std::to_string(kind) + " " + rectText(rc));
        } else if (op == "pt") {
            HRGN h = handleArg();
            int x = intArg(), y = intArg();
            print(PtInRegion(h, x, y));
        } else if (op == "rin") {
            HRGN h = handleArg();
            RECT rc = rectArg();
            print(RectInRegion(h, &rc));
        } else if (op == "eq") {
            HRGN a = handleArg(), b = handleArg();
            print(EqualRgn(a, b));
        } else if (op == "del") {
            int s = slotArg();
            print(DeleteObject(slot_[s]));
            live_[s] = false;
        } else if (op == "null") {
            int s = slotArg();
            if (slot_[s] && live_[s]) DeleteObject(slot_[s]);
            slot_[s] = nullptr;
            live_[s] = false;
        } else {
            throw std::runtime_error("unknown command: " + line);
        }
        if (next_ != args_.size()) throw std::runtime_error("too many arguments: " + line);
        return out_;
    }

private:
    std::int64_t arg()
    {
        if (next_ >= args_.size()) throw std::runtime_error("missing argument");
        return args_[next_++];
    }
    std::size_t remaining() const { return args_.size() - next_; }
    // Numbers are written as they are meant: values outside int wrap as they would in a cast.
    int intArg() { return static_cast<int>(static_cast<std::uint32_t>(arg())); }
    int slotArg()
    {
        std::int64_t s = arg();
        if (s < 0 || s >= kSlots) throw std::runtime_error("bad slot");
        return static_cast<int>(s);
    }
    HRGN handleArg() { return slot_[slotArg()]; }
    RECT rectArg()
    {
        RECT rc;
        rc.left = intArg(), rc.top = intArg(), rc.right = intArg(), rc.bottom = intArg();
        return rc;
    }
    std::vector<POINT> pointArgs(std::size_t n)
    {
        std::vector<POINT> pts(n);
        for (POINT& p : pts) p.x = intArg(), p.y = intArg();
        return pts;
    }
    void made(int s, HRGN h)
    {
        if (slot_[s] && live_[s]) DeleteObject(slot_[s]);
        slot_[s] = h;
        live_[s] = h != nullptr;
        print(h != nullptr ? 1 : 0);
    }
    void print(long long v) { out_.push_back("= " + std::to_string(v)); }
    void print(const std::string& s) { out_.push_back("= " + s); }
    static std::string rectText(const RECT& rc)
    {
        return std::to_string(static_cast<long long>(rc.left)) + " " +
               std::to_string(static_cast<long long>(rc.top)) + " " +
               std::to_string(static_cast<long long>(rc.right)) + " " +
               std::to_string(static_cast<long long>(rc.bottom));
    }
    void dumpData(HRGN h)
    {
        DWORD need = GetRegionData(h, 0, nullptr);
        DWORD needAgain = GetRegionData(h, 100000, nullptr);
        print("size " + std::to_string(need) + " " + std::to_string(needAgain));
        if (need < sizeof(RGNDATAHEADER)) return;
        std::vector<std::uint64_t> store(need / 8 + 2, 0);
        RGNDATA* data = reinterpret_cast<RGNDATA*>(store.data());
        DWORD got = GetRegionData(h, need, data);
        const RGNDATAHEADER& rdh = data->rdh;
        std::vector<std::uint64_t> small(need / 8 + 2, 0);
        DWORD smallGot = GetRegionData(h, need - 1, reinterpret_cast<RGNDATA*>(small.data()));
        std::ostringstream head;
        head << "got " << got << " hdr " << rdh.dwSize << " " << rdh.iType << " " << rdh.nCount
             << " " << rdh.nRgnSize << " " << rectText(rdh.rcBound) << " small " << smallGot;
        print(head.str());
        std::string rects = "rects";
        const RECT* rc = reinterpret_cast<const RECT*>(reinterpret_cast<const char*>(data) + rdh.dwSize);
        std::size_t fit = (need - sizeof(RGNDATAHEADER)) / sizeof(RECT);
        for (DWORD i = 0; i < rdh.nCount && i < fit; ++i) rects += " " + rectText(rc[i]);
        print(rects);
    }

    HRGN slot_[kSlots] = {};
    bool live_[kSlots] = {};
    std::vector<std::int64_t> args_;
    std::size_t next_ = 0;
    std::vector<std::string> out_;
};
