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

Outcome Keep(const Picture& picture, const std::string& path) {
    std::error_code ignored;
    const auto folder = std::filesystem::path(path).parent_path();
    if (!folder.empty())
        std::filesystem::create_directories(folder, ignored);
    std::string problem;
    return WritePng(picture, path, problem) ? Done() : Refused(problem);
}

Outcome KeepNumbered(Stage& stage, const std::string& name) {
    if (stage.options.pictures.empty())
        return Done();
    char number[24];
    std::snprintf(number, sizeof number, "%02zu-", ++stage.pictures);
    return Keep(stage.op.unit().TakePicture(),
                stage.options.pictures + "/" + number + name + ".png");
}

// Saves what there is, what was expected and where they differ; tells where.
std::string SaveDifference(const Stage& stage, const Picture& actual, const Picture& expected,
                           const Picture& difference, const std::string& name) {
    if (stage.out.empty())
        return {};
    const std::string start = stage.out + "/" + name;
    const std::pair<const char*, const Picture*> pictures[] = {
        {"-actual.png", &actual}, {"-expected.png", &expected}, {"-difference.png", &difference}};
    for (const auto& [end, picture] : pictures)
        if (const Outcome kept = Keep(*picture, start + end); !kept.done)
            return "; " + kept.text;
    return "; see " + start + "-difference.png";
}

Outcome Compare(Stage& stage, const Picture& actual, const std::string& file) {
    if (stage.options.update_screens) {
        stage.options.say("made " + file);
        return Keep(actual, file);
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
                   SaveDifference(stage, actual, *expected, difference->picture, name));
}

Outcome TakePicture(ScenarioReader& reader, const Values& values) {
    return reader.Add(
        Act{[name = values.Text("NAME")](Stage& stage) { return KeepNumbered(stage, name); }});
}

Outcome ExpectScreen(ScenarioReader& reader, const Values& values) {
    return reader.Add(Act{[file = values.Text("FILE")](Stage& stage) {
        return Compare(stage, stage.op.unit().TakePicture(), file);
    }});
}

Outcome ExpectGraphics(ScenarioReader& reader, const Values& values) {
    return reader.Add(Act{[file = values.Text("FILE")](Stage& stage) {
        // A scaler that shows no video.
        return Compare(stage, MixPlanes(stage.op.unit().Screen(), NoSignal(), ScalerState{}), file);
    }});
}

Outcome SayText(ScenarioReader& reader, const Values& values) {
    return reader.Add(Act{[text = values.Text("TEXT")](Stage& stage) {
        stage.options.say(text);
        return Done();
    }});
}

}  // namespace

ScenarioRows PictureRows() {
    return {
        {"expect screen FILE",
         "The screen is that PNG file, pixel by pixel, the DVR's picture included, which moves "
         "with the unit's time. When it is not, the actual, the expected and a difference picture "
         "are saved.",
         ExpectScreen},
        {"expect graphics FILE", "The same for what the program drew, without the DVR's picture.",
         ExpectGraphics},
        {"picture NAME",
         "Keeps a numbered picture of the screen in the folder of --screens, if there is one.",
         TakePicture},
        {"say TEXT", "Tells the person at the desk something.", SayText},
    };
}

}  // namespace unit
