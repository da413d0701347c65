// Replies to known points, look-ups by id, and the merge of two books.
#include <charconv>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "bench/CloudBook.h"
#include "bench/Work.h"

namespace bench {

namespace {

using Reply = std::vector<vex::String>;
using ById = std::unordered_map<long long, CPunGps*>;

/// A book of confirmed points, a map of the same ids for the peer, and ids in random order.
struct Known {
    explicit Known(std::size_t n) : order(Shuffled(n)) {
        book.Fill(n);
        book.Confirm();
        for (std::size_t i = 0; i < n; ++i)
            byId.emplace(CloudBook::IdOf(i), book.lib.GetPunAt(0, static_cast<int>(i)));
    }
    CloudBook book;
    ById byId;
    std::vector<std::size_t> order;
};

// --- replies ------------------------------------------------------------------------------------------

/// A page of a server's answer: replies in memory, handed out again and again under other ids. Two sets of
/// them: what a pass stores differs from what the one before it did.
class Page {
public:
    explicit Page(const CloudBook& source) {
        vex::String fields;
        CGpsPntCloudTable writer(nullptr);
        for (std::size_t i = 0; i < 2 * kReplies; ++i) {
            CPunGps& point = *source.lib.GetPunAt(0, static_cast<int>(i));
            writer.GetFields(point, 0x1FFFF, fields);
            Reply reply{"0", "1"};
            std::string_view text = fields.View();
            for (;;) {
                const std::size_t end = text.find(';');
                reply.emplace_back(text.substr(0, end));
                if (end == std::string_view::npos) break;
                text.remove_prefix(end + 1);
            }
            replies_.push_back(std::move(reply));
        }
    }
    Reply& At(std::size_t i, int pass) { return replies_[i % kReplies + (pass % 2 == 0 ? 0 : kReplies)]; }

private:
    static constexpr std::size_t kReplies = 500;
    std::vector<Reply> replies_;
};

struct Replies : Known {
    explicit Replies(std::size_t n) : Known(n), page(book) {
        for (const std::size_t i : order) ids.emplace_back(std::to_string(CloudBook::IdOf(i)));
    }
    /// The i-th reply of the pass.
    const Reply& Next(std::size_t i) {
        Reply& reply = page.At(i, pass);
        reply[0] = ids[i];
        return reply;
    }
    Page page;
    std::vector<vex::String> ids;
    int pass = 0;
};

Work ApplyReplies() {
    return {"cloud.reply.library", [](std::size_t n) -> Run {
                auto work = std::make_shared<Replies>(n);
                return Run{[work, n] {
                               ++work->pass;
                               for (std::size_t i = 0; i < n; ++i)
                                   Keep(work->book.points.UpdateSuccessful_Edit(work->Next(i)));
                           },
                           {}};
            }};
}

template <class Number>
Number Parse(const vex::String& text) {
    Number value{};
    std::from_chars(text.c_str(), text.c_str() + text.GetLength(), value);
    return value;
}

/// from_chars of every number, a find by id, and the setters; nothing is tested.
void ParseAndSet(const ById& byId, const Reply& f) {
    CPunGps& p = *byId.find(Parse<long long>(f[0]))->second;
    p.SetNome(std::string(f[2].View()));
    p.SetSecScri(std::string(f[3].View()));
    p.SetCoord(Parse<double>(f[4]), Parse<double>(f[5]), Parse<double>(f[6]));
    p.SetCodeEgn(static_cast<std::uint32_t>(Parse<int>(f[7])));
    p.SetYear(static_cast<unsigned short>(Parse<int>(f[8])));
    p.SetMonth(static_cast<unsigned char>(Parse<int>(f[9])));
    p.SetDay(static_cast<unsigned char>(Parse<int>(f[10])));
    p.SetTod(static_cast<std::uint32_t>(Parse<int>(f[11])));
    p.SetQua(Parse<int>(f[12]));
    p.SetNuGpsUsed(static_cast<unsigned char>(Parse<int>(f[13])));
    p.SetNuGloUsed(static_cast<unsigned char>(Parse<int>(f[14])));
    p.SetLat(Parse<double>(f[15]));
    p.SetLong(Parse<double>(f[16]));
    p.SetElev(Parse<double>(f[17]));
    p.SetAltAnt(Parse<double>(f[18]));
    p.SetPdop(Parse<double>(f[19]));
    p.SetGdop(Parse<double>(f[20]));
    p.SetHposRms(Parse<double>(f[21]));
    p.SetVposRms(Parse<double>(f[22]));
    p.SetPosCov_xx(static_cast<float>(Parse<int>(f[23]) / 1e9));
    p.SetPosCov_xy(static_cast<float>(Parse<int>(f[24]) / 1e9));
    p.SetPosCov_xz(static_cast<float>(Parse<int>(f[25]) / 1e9));
    p.SetPosCov_yy(static_cast<float>(Parse<int>(f[26]) / 1e9));
    p.SetPosCov_yz(static_cast<float>(Parse<int>(f[27]) / 1e9));
    p.SetPosCov_zz(static_cast<float>(Parse<int>(f[28]) / 1e9));
}

Work ParseReplies() {
    return {"cloud.reply.from_chars", [](std::size_t n) -> Run {
                auto work = std::make_shared<Replies>(n);
                for (const auto& [id, point] : work->byId) point->SetCloudNotify(false);
                return Run{[work, n] {
                               ++work->pass;
                               for (std::size_t i = 0; i < n; ++i) ParseAndSet(work->byId, work->Next(i));
                               Keep(*work);
                           },
                           {}};
            }};
}

// --- look-up ------------------------------------------------------------------------------------------

Work FindItems() {
    return {"cloud.find.library", [](std::size_t n) -> Run {
                auto work = std::make_shared<Known>(n);
                return Run{[work] {
                               for (const std::size_t i : work->order) {
                                   CCloudItem* item = nullptr;
                                   if (work->book.points.FindItem(CloudBook::IdOf(i), item)) Keep(item);
                               }
                           },
                           {}};
            }};
}

Work FindInMap() {
    return {"cloud.find.unordered_map", [](std::size_t n) -> Run {
                auto work = std::make_shared<Known>(n);
                return Run{[work] {
                               for (const std::size_t i : work->order) {
                                   const auto found = work->byId.find(CloudBook::IdOf(i));
                                   if (found == work->byId.end()) continue;
                                   CPunGps* point = found->second;
                                   Keep(point);
                               }
                           },
                           {}};
            }};
}

// --- merge --------------------------------------------------------------------------------------------

/// Two copies of one project. Every tenth point has a note there, every tenth photos here.
struct Copies {
    explicit Copies(std::size_t n) : here(n) {
        there.Fill(n);
        there.Confirm();
        for (std::size_t i = 0; i < n; i += 10) {
            there.lib.GetPunAt(0, static_cast<int>(i))->SetNote("seen from the road");
            here.book.lib.GetPunAt(0, static_cast<int>((i + 5) % n))->SetNomiFoto_Raw("IMG_0001.JPG");
        }
    }
    /// The points here as they were before a merge.
    void Restore() {
        const int n = here.book.lib.GetPunArSize(0);
        for (int i = 0; i < n; ++i) {
            here.book.lib.GetPunAt(0, i)->AnnullaTutteLeVar();
            if (i % 10 == 5) here.book.lib.GetPunAt(0, i)->SetNomiFoto_Raw("IMG_0001.JPG");
        }
    }
    Known here;
    CloudBook there;
};

Work MergeBooks(const char* name, bool first) {
    return {name, [first](std::size_t n) -> Run {
                auto copies = std::make_shared<Copies>(n);
                std::function<void()> before;
                if (first) before = [copies] { copies->Restore(); };
                return Run{[copies] { copies->here.book.lib.MergeCloudItems(&copies->there.lib); }, before};
            }};
}

/// The fields that a merge looks at.
std::size_t ReadFields(const CPunGps& p) {
    return p.GetTerScri().size() + p.GetNote().size() + p.GetNomiFoto_Raw().size() + p.GetAttribDis().size() +
           p.GetVldtEgn() + static_cast<std::size_t>(p.GetIdentDescr()) +
           static_cast<std::size_t>(p.GetGisHandle()) + (p.IsPrimaryPtDup() ? 1 : 0) +
           (p.IsSecondaryPtDup() ? 1 : 0);
}

Work HashJoin(const char* name, bool first) {
    return {name, [first](std::size_t n) -> Run {
                auto copies = std::make_shared<Copies>(n);
                if (!first) copies->here.book.lib.MergeCloudItems(&copies->there.lib);
                std::function<void()> before;
                if (first) before = [copies] { copies->Restore(); };
                return Run{
                    [copies, n] {
                        std::size_t sum = 0;
                        for (std::size_t i = 0; i < n; ++i) {
                            const CPunGps& incoming = *copies->there.lib.GetPunAt(0, static_cast<int>(i));
                            const CPunGps& local = *copies->here.byId.find(incoming.GetCloudId())->second;
                            sum += ReadFields(incoming) + ReadFields(local);
                        }
                        Keep(sum);
                    },
                    before};
            }};
}

}  // namespace

std::vector<Ratio> CloudReplyRatios() {
    const std::vector<std::size_t> counts{10'000, 100'000, 1'000'000};
    // The bounds are for a million points; the other counts show how the ratios grow.
    const auto atMillion = [](double bound) {
        return [bound](std::size_t n) {
            return n >= 1'000'000 ? bound : std::numeric_limits<double>::infinity();
        };
    };
    return {{"cloud.reply", ApplyReplies(), ParseReplies(), counts, atMillion(1.2), 0, 1.2},
            {"cloud.find", FindItems(), FindInMap(), counts, atMillion(1.1), 0, 0},
            {"cloud.merge", MergeBooks("cloud.merge.library", false),
             HashJoin("cloud.merge.hash_join", false), counts, atMillion(1.2), 0, 0},
            {"cloud.merge.first", MergeBooks("cloud.merge.first.library", true),
             HashJoin("cloud.merge.first.hash_join", true), counts, atMillion(1.2), 0, 0}};
}

}  // namespace bench
