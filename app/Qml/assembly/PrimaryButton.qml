// The button for the one action of a screen that matters most.
DefaultButton {
    emphasised: true
}
