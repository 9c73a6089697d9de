namespace tarnovel {
}
