// number_list, integer_list
#include "commands/number_list.h"

#include "failure.h"
#include "io/number_text.h"

namespace zerklsc::tool {
namespace {

template <class T>
std::vector<T> list_of(const char* option, const std::string& text, size_t count, T lowest, T highest) {
    auto numbers = numbers_from(text, lowest, highest);
    if (!numbers || numbers->size() != count)
        usage_failure("{}: {} is not {} numbers from {} to {} with commas between", option, text, count,
                      lowest, highest);
    return std::move(*numbers);
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
