#include "tests/campaign/plan.h"

#include <algorithm>
#include <random>

#include "tests/campaign/trial.h"

namespace tests::campaign {

namespace {

// Not a distribution of the library: those may give other numbers elsewhere.
std::uint64_t Below(std::mt19937& random, std::uint64_t end) {
    return random() % end;
}

}  // namespace

std::vector<Course> Survey(const std::vector<const Road*>& roads, std::size_t side_by_side,
                           const std::function<void(const Case&, const std::string&)>& find) {
    std::vector<Case> cases;
    for (const Road* const road : roads)
        cases.push_back({road, 1, {}});
    std::vector<Course> courses(roads.size());
    TryApart(cases, side_by_side, [&](const Case& trial, const Verdict& verdict) {
        for (const std::string& finding : verdict.findings)
            find(trial, finding);
        courses[static_cast<std::size_t>(&trial - cases.data())] = {trial.road, verdict.counts};
    });
    return courses;
}

std::vector<Case> Sweep(const std::vector<Course>& courses,
                        const std::vector<const FaultKind*>& kinds, std::uint64_t every,
                        const Stretch& stretch, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases;
    for (const Course& course : courses)
        for (const FaultKind* const kind : kinds)
            for (std::size_t moment = kCall; moment <= kind->last; ++moment) {
                const std::uint64_t last = std::min(stretch.last, course.counts[moment]);
                for (std::uint64_t number = stretch.first + Below(random, every); number <= last;
                     number += every)
                    cases.push_back(
                        {course.road, 1, {{kind, static_cast<Moment>(moment), number}}});
            }
    return cases;
}

std::vector<Case> Sample(const std::vector<Course>& courses,
                         const std::vector<const FaultKind*>& kinds, std::size_t faults,
                         std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases(count);
    for (Case& trial : cases) {
        const Course& course = courses[Below(random, courses.size())];
        trial.road = course.road;
        while (trial.faults.size() < faults) {
            const FaultKind* const kind = kinds[Below(random, kinds.size())];
            // A road without a link has calls alone.
            const std::size_t moments =
                std::ranges::count_if(course.counts.begin(), course.counts.begin() + kind->last + 1,
                                      [](std::uint64_t number) { return number > 0; });
            const auto moment = static_cast<Moment>(Below(random, moments));
            trial.faults.push_back({kind, moment, 1 + Below(random, course.counts[moment])});
        }
    }
    return cases;
}

}  // namespace tests::campaign
