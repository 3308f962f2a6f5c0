#include "unit/traces/screen_name.h"

#include <algorithm>
#include <string_view>

namespace unit {
namespace {

struct ScreenRow {
    std::string_view part;  // of one of its texts
    std::string_view name;
};
// The first row that matches decides.
constexpr ScreenRow kScreens[] = {
    {"1. 本体に外部電源を接続して下さい。", "power-on"},
    {"3.“Next” ボタン", "check-card"},
    {"4. \"gp_card_upgrade.bin\"", "insert-card"},
    {"Update Percent", "updating"},
    {"6. しばらくお待ち下さい。", "wait"},
    {"7. DVR用SDカード", "remove-card"},
    {"アップデート終了です。", "result"},
    {"アップデートに失敗しました。", "result"},
    {"異常が発生した為", "no card report"},
    {"本体に外部電源を接続して下さい。", "no external power"},
    {"SDカードを抜いて下さい。", "notice"},
};

}  // namespace

std::string ScreenName(const std::vector<std::string>& texts) {
    for (const auto& [part, name] : kScreens)
        if (std::ranges::any_of(texts, [part](const std::string& text) {
                return text.find(part) != std::string::npos;
            }))
            return std::string(name);
    return texts.empty() ? std::string() : texts.front();
}

}  // namespace unit
