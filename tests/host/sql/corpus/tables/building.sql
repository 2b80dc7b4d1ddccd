CREATE TABLE Levels (Id LONG CONSTRAINT PrimaryKey PRIMARY KEY, Name TEXT(20), Height DOUBLE);
INSERT INTO Levels (Id, Name, Height) VALUES (1, 'Ground', 3.5);
INSERT INTO Levels (Id, Name, Height) VALUES (2, 'First', 3);
INSERT INTO Levels (Id, Name, Height) VALUES (3, 'Roof', Null);

CREATE TABLE Rooms (Id COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, Code TEXT(10), [Level] SHORT, Area DOUBLE,
    Cost CURRENCY, Built DATETIME, Heated YESNO);
CREATE INDEX ByCode ON Rooms (Code);
CREATE INDEX ByArea ON Rooms (Area);
INSERT INTO Rooms (Code, [Level], Area, Cost, Built, Heated) VALUES ('A1', 1, 10.5, 100.25, #1/31/2017#, True);
INSERT INTO Rooms (Code, [Level], Area, Cost, Built, Heated) VALUES ('a2', 1, 20, 50, #6/1/2018#, False);
INSERT INTO Rooms (Code, [Level], Area, Cost, Built, Heated) VALUES ('B1', 2, 5.25, Null, Null, True);
INSERT INTO Rooms (Code, [Level], Area, Cost, Built, Heated) VALUES ('b2', Null, 30, 1.5, #12/24/2017#, False);
INSERT INTO Rooms (Code, [Level], Area, Cost, Built, Heated) VALUES (Null, 2, 5.25, 100.25, #2/29/2016#, True);
