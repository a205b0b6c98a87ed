#include "Translator.h"

#include <morvane/sys/Queue.h>

#include <sstream>
#include <utility>

namespace gallery {

namespace {

struct Entry {
    std::string_view english;
    std::string_view french;
};

constexpr Entry kPhrases[] = {
    {"Sea view", "Vue sur la mer"},
    {"Quiet room, late arrival", "Chambre calme, arrivée tardive"},
    {"Front desk", "Réception"},
    {"Open daily", "Ouvert tous les jours"},
    {"Open late", "Ouvert tard"},
    {"Closed on Sunday", "Fermé le dimanche"},
    {"Closed on Monday", "Fermé le lundi"},
    {"Covered Market", "Marché couvert"},
    {"Botanical Garden", "Jardin botanique"},
    {"Fresh bread every morning", "Pain frais chaque matin"},
    {"Fresh fish every day", "Poisson frais chaque jour"},
    {"Best at sunset", "Superbe au coucher du soleil"},
    {"Live music tonight", "Musique live ce soir"},
    {"New this week", "Nouveau cette semaine"},
    {"Our menus", "Nos menus"},
};

constexpr Entry kWords[] = {
    {"Open", "Ouvert"},       {"Closed", "Fermé"},    {"Fresh", "Frais"},  {"Market", "Marché"},
    {"Garden", "Jardin"},     {"Museum", "Musée"},    {"view", "vue"},     {"late", "tard"},
    {"daily", "chaque jour"}, {"tonight", "ce soir"}, {"Harbour", "Port"}, {"Beach", "Plage"},
};

} // namespace

Translator::Translator(double delay) : delay_(delay) {}

std::string Translator::toFrench(std::string_view text) {
    std::string plain(text);
    for (std::size_t at = plain.find("<en>"); at != std::string::npos; at = plain.find("<en>", at))
        plain.erase(at, 4);
    for (const Entry& phrase : kPhrases)
        if (plain == phrase.english) return std::string(phrase.french);
    std::istringstream words(plain);
    std::string word, out;
    while (words >> word) {
        for (const Entry& entry : kWords)
            if (word == entry.english) {
                word = entry.french;
                break;
            }
        out += out.empty() ? word : " " + word;
    }
    return out;
}

void Translator::translate(const std::string& text, Completion done) {
    if (!done) return;
    ++state_->pending;
    morvane::sys::Queue::global().after(delay_, [state = state_, text, done = std::move(done)] {
        done(toFrench(text));
        ++state->answered;
        --state->pending;
    });
}

} // namespace gallery
