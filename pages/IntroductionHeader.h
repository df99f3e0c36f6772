#pragma once
// How wide the parts of the introduction page's header are. Pure logic; all lengths in 96-DPI units.

struct IntroductionHeaderText {
    int titleWidth = 0;
    int firstWidth = 0, secondWidth = 0, thirdWidth = 0;  // of the three tab headers' texts
};

struct IntroductionHeaderLayout {
    int titleWidth = 0;
    int groupLeftPadding = 0;  // from the title's block to the first tab header
    int firstWidth = 0, secondWidth = 0, thirdWidth = 0;
};

// Centres the tab headers within the page's 800 units where they and the title leave the room, and narrows the widest
// ones where they do not fit beside each other. With `largeText`, the user's larger size of text, those that do not fit
// get a row of the window for themselves instead: each is as wide as its text, or its share of the row.
IntroductionHeaderLayout LayOutIntroductionHeader(const IntroductionHeaderText& text, bool largeText = false);
