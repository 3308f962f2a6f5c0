#include <cstdio>
#include <filesystem>

#include "unit/picture/picture.h"
#include "unit/picture/screen_mixer.h"
#include "unit/scenario/language.h"

namespace unit {
namespace {

using control::Done;
using control::Outcome;
using control::Refused;
using control::Values;

Outcome Save(const Picture& picture, const std::string& path) {
    std::error_code ignored;
    const auto folder = std::filesystem::path(path).parent_path();
    if (!folder.empty())
        std::filesystem::create_directories(folder, ignored);
    std::string problem;
    return WritePng(picture, path, problem) ? Done() : Refused(problem);
}

Outcome SaveNumbered(ScenarioContext& context, const std::string& name) {
    if (context.options.pictures.empty())
        return Done();
    char number[24];
    std::snprintf(number, sizeof number, "%02zu-", ++context.pictures);
    return Save(context.op.unit().TakePicture(),
                context.options.pictures + "/" + number + name + ".png");
}

// Saves the actual, the expected and the difference picture; returns where.
std::string SaveDifference(const ScenarioContext& context, const Picture& actual,
                           const Picture& expected, const Picture& difference,
                           const std::string& name) {
    if (context.out.empty())
        return {};
    const std::string start = context.out + "/" + name;
    const std::pair<const char*, const Picture*> pictures[] = {
        {"-actual.png", &actual}, {"-expected.png", &expected}, {"-difference.png", &difference}};
    for (const auto& [end, picture] : pictures)
        if (const Outcome saved = Save(*picture, start + end); !saved.done)
            return "; " + saved.text;
    return "; see " + start + "-difference.png";
}

Outcome Compare(ScenarioContext& context, const Picture& actual, const std::string& file) {
    if (context.options.update_screens) {
        context.options.say("created " + file);
        return Save(actual, file);
    }
    std::string problem;
    const auto expected = ReadPng(file, problem);
    if (!expected)
        return Refused(problem);
    const auto difference = ComparePictures(actual, *expected);
    if (!difference)
        return Done();
    const std::string name = std::filesystem::path(file).stem().string();
    return Refused(difference->text +
                   SaveDifference(context, actual, *expected, difference->picture, name));
}

Outcome TakePicture(ScenarioReader& reader, const Values& values) {
    return reader.Add(Action{[name = values.Text("NAME")](ScenarioContext& context) {
        return SaveNumbered(context, name);
    }});
}

Outcome ExpectScreen(ScenarioReader& reader, const Values& values) {
    return reader.Add(Action{[file = values.Text("FILE")](ScenarioContext& context) {
        return Compare(context, context.op.unit().TakePicture(), file);
    }});
}

Outcome ExpectGraphics(ScenarioReader& reader, const Values& values) {
    return reader.Add(Action{[file = values.Text("FILE")](ScenarioContext& context) {
        // With a scaler that shows no video.
        return Compare(context, MixPlanes(context.op.unit().Screen(), NoSignal(), ScalerState{}),
                       file);
    }});
}

Outcome SayText(ScenarioReader& reader, const Values& values) {
    return reader.Add(Action{[text = values.Text("TEXT")](ScenarioContext& context) {
        context.options.say(text);
        return Done();
    }});
}

}  // namespace

ScenarioRows PictureRows() {
    return {
        {"expect screen FILE",
         "The screen equals that PNG file in every pixel, including the DVR's picture, which moves "
         "with the unit's time. Otherwise the actual, the expected and a difference picture are "
         "saved.",
         ExpectScreen},
        {"expect graphics FILE",
         "The same for the graphics that the program drew, without the DVR's picture.",
         ExpectGraphics},
        {"picture NAME",
         "Saves a numbered picture of the screen in the folder of --screens, if given.",
         TakePicture},
        {"say TEXT", "Prints the text for the operator.", SayText},
    };
}

}  // namespace unit
