#include "visacore/lan/dns_message.h"

namespace braxcfg::visa::lan::dns {
namespace {

constexpr std::uint16_t kFlagResponse = 0x8000;
constexpr std::uint16_t kFlagAuthoritative = 0x0400;
constexpr std::size_t kMaxLabel = 63;
constexpr std::size_t kMaxName = 255;
// More pointers than a name could have labels means a loop.
constexpr int kMaxPointers = 128;
// A datagram cannot hold more; bounds the work on a hostile count.
constexpr std::uint16_t kMaxEntries = 512;

class Writer {
public:
    void u8(std::uint8_t value) { bytes_.push_back(value); }
    void u16(std::uint16_t value) {
        u8(static_cast<std::uint8_t>(value >> 8));
        u8(static_cast<std::uint8_t>(value));
    }
    void u32(std::uint32_t value) {
        u16(static_cast<std::uint16_t>(value >> 16));
        u16(static_cast<std::uint16_t>(value));
    }
    // Labels split at dots; no compression.
    void name(std::string_view text) {
        while (!text.empty()) {
            const std::size_t dot = text.find('.');
            const std::string_view label = text.substr(0, std::min(dot, kMaxLabel));
            u8(static_cast<std::uint8_t>(label.size()));
            bytes_.insert(bytes_.end(), label.begin(), label.end());
            text = dot == std::string_view::npos ? std::string_view() : text.substr(dot + 1);
        }
        u8(0);
    }
    void header(std::uint16_t id, std::uint16_t flags, std::size_t questions, std::size_t answers) {
        u16(id);
        u16(flags);
        u16(static_cast<std::uint16_t>(questions));
        u16(static_cast<std::uint16_t>(answers));
        u16(0);
        u16(0);
    }
    void record(const Record& record) {
        name(record.name);
        u16(record.type);
        u16(kClassIn | kClassTopBit);
        u32(record.ttl);
        const std::size_t lengthAt = bytes_.size();
        u16(0);
        switch (record.type) {
        case kPtr: name(record.target); break;
        case kSrv:
            u16(0);  // priority
            u16(0);  // weight
            u16(record.port);
            name(record.target);
            break;
        case kTxt:
            for (const std::string& text : record.texts) {
                u8(static_cast<std::uint8_t>(std::min<std::size_t>(text.size(), 255)));
                bytes_.insert(bytes_.end(), text.begin(), text.begin() + std::min<std::ptrdiff_t>(text.size(), 255));
            }
            if (record.texts.empty()) u8(0);  // a TXT record is never empty
            break;
        default: bytes_.insert(bytes_.end(), record.address.begin(), record.address.end());
        }
        const std::size_t length = bytes_.size() - lengthAt - 2;
        bytes_[lengthAt] = static_cast<std::uint8_t>(length >> 8);
        bytes_[lengthAt + 1] = static_cast<std::uint8_t>(length);
    }
    std::vector<std::uint8_t> take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
};

class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    std::size_t offset() const { return offset_; }
    bool u8(std::uint8_t& value) {
        if (offset_ >= bytes_.size()) return false;
        value = bytes_[offset_++];
        return true;
    }
    bool u16(std::uint16_t& value) {
        std::uint8_t high = 0, low = 0;
        if (!u8(high) || !u8(low)) return false;
        value = static_cast<std::uint16_t>(high << 8 | low);
        return true;
    }
    bool u32(std::uint32_t& value) {
        std::uint16_t high = 0, low = 0;
        if (!u16(high) || !u16(low)) return false;
        value = std::uint32_t{high} << 16 | low;
        return true;
    }
    bool skip(std::size_t count) {
        if (bytes_.size() - offset_ < count) return false;
        offset_ += count;
        return true;
    }
    // A name at the current offset, following compression pointers
    // anywhere in the message.
    bool name(std::string& out) {
        out.clear();
        std::size_t at = offset_;
        bool jumped = false;
        for (int pointers = 0;;) {
            if (at >= bytes_.size()) return false;
            const std::uint8_t length = bytes_[at];
            if ((length & 0xC0) == 0xC0) {
                if (at + 1 >= bytes_.size() || ++pointers > kMaxPointers) return false;
                if (!jumped) offset_ = at + 2;
                jumped = true;
                at = static_cast<std::size_t>(length & 0x3F) << 8 | bytes_[at + 1];
                continue;
            }
            if (length > kMaxLabel) return false;  // the reserved label types
            if (length == 0) {
                if (!jumped) offset_ = at + 1;
                return true;
            }
            if (bytes_.size() - at - 1 < length) return false;
            if (!out.empty()) out += '.';
            out.append(reinterpret_cast<const char*>(bytes_.data() + at + 1), length);
            if (out.size() > kMaxName) return false;
            at += 1 + length;
        }
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t offset_ = 0;
};

bool parseRecordData(Reader& reader, std::span<const std::uint8_t> bytes, std::size_t end, Record& record) {
    switch (record.type) {
    case kPtr: return reader.name(record.target) && reader.offset() == end;
    case kSrv: {
        std::uint16_t priority = 0, weight = 0;
        return reader.u16(priority) && reader.u16(weight) && reader.u16(record.port) &&
               reader.name(record.target) && reader.offset() == end;
    }
    case kA:
    case kAaaa: {
        const std::size_t size = record.type == kA ? 4 : 16;
        if (end - reader.offset() != size) return false;
        record.address.assign(bytes.begin() + static_cast<std::ptrdiff_t>(reader.offset()),
                              bytes.begin() + static_cast<std::ptrdiff_t>(end));
        return reader.skip(size);
    }
    case kTxt:
        while (reader.offset() < end) {
            std::uint8_t length = 0;
            if (!reader.u8(length) || end - reader.offset() < length) return false;
            record.texts.emplace_back(reinterpret_cast<const char*>(bytes.data() + reader.offset()), length);
            reader.skip(length);
        }
        return true;
    default: return reader.skip(end - reader.offset());
    }
}

}  // namespace

std::vector<std::uint8_t> encodeQuery(std::uint16_t id, const std::vector<Question>& questions,
                                      bool unicastResponse) {
    Writer writer;
    writer.header(id, 0, questions.size(), 0);
    for (const Question& question : questions) {
        writer.name(question.name);
        writer.u16(question.type);
        writer.u16(unicastResponse ? kClassIn | kClassTopBit : kClassIn);
    }
    return writer.take();
}

std::vector<std::uint8_t> encodeResponse(std::uint16_t id, const std::vector<Question>& questions,
                                         const std::vector<Record>& answers) {
    Writer writer;
    writer.header(id, kFlagResponse | kFlagAuthoritative, questions.size(), answers.size());
    for (const Question& question : questions) {
        writer.name(question.name);
        writer.u16(question.type);
        writer.u16(kClassIn);
    }
    for (const Record& record : answers) writer.record(record);
    return writer.take();
}

bool parseMessage(std::span<const std::uint8_t> bytes, Message& out) {
    out = Message{};
    Reader reader(bytes);
    std::uint16_t flags = 0, counts[4] = {};
    if (!reader.u16(out.id) || !reader.u16(flags)) return false;
    for (std::uint16_t& count : counts)
        if (!reader.u16(count) || count > kMaxEntries) return false;
    out.response = (flags & kFlagResponse) != 0;
    for (std::uint16_t i = 0; i < counts[0]; ++i) {
        Question question;
        std::uint16_t questionClass = 0;
        if (!reader.name(question.name) || !reader.u16(question.type) || !reader.u16(questionClass)) return false;
        out.questions.push_back(std::move(question));
    }
    const std::size_t records = std::size_t{counts[1]} + counts[2] + counts[3];
    for (std::size_t i = 0; i < records; ++i) {
        Record record;
        std::uint16_t recordClass = 0, length = 0;
        if (!reader.name(record.name) || !reader.u16(record.type) || !reader.u16(recordClass) ||
            !reader.u32(record.ttl) || !reader.u16(length) || bytes.size() - reader.offset() < length)
            return false;
        if (!parseRecordData(reader, bytes, reader.offset() + length, record)) return false;
        out.records.push_back(std::move(record));
    }
    return true;
}

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

}  // namespace braxcfg::visa::lan::dns
