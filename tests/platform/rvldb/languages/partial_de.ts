<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name></name>
    <message id="BOTH"><source>Both</source><translation>Beide</translation></message>
    <message id="GERMAN_ONLY"><source>German only</source><translation>Nur deutsch</translation></message>
    <message id="GERMAN_LATER"><source>German later</source><translation type="unfinished"></translation></message>
</context>
</TS>
