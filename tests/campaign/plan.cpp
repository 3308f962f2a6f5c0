#include "tests/campaign/plan.h"

#include <algorithm>

#include "tests/campaign/isolation.h"

namespace tests::campaign {

namespace {

constexpr Moment kMoments[] = {Moment::kCall, Moment::kFrame, Moment::kByte};

std::uint64_t CountOf(const Course& course, Moment moment) {
    switch (moment) {
        case Moment::kCall:
            return course.calls;
        case Moment::kFrame:
            return course.frames;
        case Moment::kByte:
            break;
    }
    return course.bytes;
}

// Not a distribution of the library: those may give other numbers elsewhere.
std::uint64_t Below(std::mt19937& random, std::uint64_t end) {
    return random() % end;
}

// At any moment of the road that the kind fits; nothing when there is none.
std::optional<Fault> AnyFault(const Course& course, const FaultKind& kind, std::mt19937& random) {
    std::vector<Moment> fitting;
    for (const Moment moment : kMoments)
        if (Fits(kind, moment) && CountOf(course, moment) > 0)
            fitting.push_back(moment);
    if (fitting.empty())
        return std::nullopt;
    const Moment moment = fitting[Below(random, fitting.size())];
    return Fault{&kind, moment, 1 + Below(random, CountOf(course, moment))};
}

}  // namespace

std::vector<Course> Survey(const std::vector<const Road*>& roads, std::size_t side_by_side,
                           const std::function<void(const Case&, const std::string&)>& find) {
    std::vector<Case> cases;
    std::vector<Course> courses;
    for (const Road* const road : roads) {
        cases.push_back({road, 1, {}});
        courses.push_back({road, 0, 0, 0});
    }
    TryApart(cases, side_by_side, [&](const Case& trial, const Verdict& verdict) {
        for (const std::string& finding : verdict.findings)
            find(trial, finding);
        for (Course& course : courses)
            if (course.road == trial.road)
                course = {trial.road, verdict.calls, verdict.frames, verdict.bytes};
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
            for (const Moment moment : kMoments) {
                if (!Fits(*kind, moment))
                    continue;
                const std::uint64_t last = std::min(stretch.last, CountOf(course, moment));
                for (std::uint64_t number = stretch.first + Below(random, every); number <= last;
                     number += every)
                    cases.push_back({course.road, 1, {{kind, moment, number}}});
            }
    return cases;
}

std::vector<Case> Sample(const std::vector<Course>& courses,
                         const std::vector<const FaultKind*>& kinds, std::size_t on_each,
                         std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases;
    std::size_t next = 0;
    for (const Course& course : courses)
        for (std::size_t count = 0; count < on_each; ++count)
            if (const auto fault = AnyFault(course, *kinds[next++ % kinds.size()], random))
                cases.push_back({course.road, 1, {*fault}});
    return cases;
}

std::vector<Case> Pairs(const std::vector<Course>& courses,
                        const std::vector<const FaultKind*>& kinds, std::size_t count,
                        std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases;
    while (cases.size() < count) {
        const Course& course = courses[Below(random, courses.size())];
        const auto first = AnyFault(course, *kinds[Below(random, kinds.size())], random);
        const auto second = AnyFault(course, *kinds[Below(random, kinds.size())], random);
        if (first && second)
            cases.push_back({course.road, 1, {*first, *second}});
    }
    return cases;
}

}  // namespace tests::campaign
