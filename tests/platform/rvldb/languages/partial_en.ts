<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="BOTH"><source>Both</source><translation>Both</translation></message>
    <message id="ENGLISH_ONLY"><source>English only</source><translation>English only</translation></message>
    <message id="GERMAN_LATER"><source>German later</source><translation>German later</translation></message>
</context>
</TS>
