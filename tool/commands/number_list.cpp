// number_list, integer_list
#include "commands/number_list.h"

#include <charconv>

#include "failure.h"

namespace zerklsc::tool {
namespace {

template <class T>
bool parse(const std::string& text, T lowest, T highest, std::vector<T>& numbers) {
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    for (;; ++at) {
        T value{};
        const auto [next, error] = std::from_chars(at, end, value);
        if (error != std::errc{} || !(value >= lowest && value <= highest))
            return false;
        numbers.push_back(value);
        at = next;
        if (at == end)
            return true;
        if (*at != ',')
            return false;
    }
}

template <class T>
std::vector<T> list_of(const char* option, const std::string& text, size_t count, T lowest, T highest) {
    std::vector<T> numbers;
    if (!parse(text, lowest, highest, numbers) || numbers.size() != count)
        usage_failure("{}: {} is not {} numbers from {} to {} with commas between", option, text, count,
                      lowest, highest);
    return numbers;
}

} // namespace

std::vector<double> number_list(const char* option, const std::string& text, size_t count, double lowest,
                                double highest) {
    return list_of(option, text, count, lowest, highest);
}

std::vector<int> integer_list(const char* option, const std::string& text, size_t count, int lowest,
                              int highest) {
    return list_of(option, text, count, lowest, highest);
}

} // namespace zerklsc::tool
