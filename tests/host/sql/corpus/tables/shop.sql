CREATE TABLE Customers (Id LONG CONSTRAINT PrimaryKey PRIMARY KEY, Name TEXT(30), City TEXT(30));
INSERT INTO Customers VALUES (1, 'Abel', 'Berlin');
INSERT INTO Customers VALUES (2, 'Baker', 'Paris');
INSERT INTO Customers VALUES (3, 'Cohen', 'Berlin');
INSERT INTO Customers VALUES (4, 'Diaz', 'Madrid');
INSERT INTO Customers VALUES (5, 'Eco', Null);

CREATE TABLE Orders (Id LONG CONSTRAINT PrimaryKey PRIMARY KEY, Customer LONG, Placed DATETIME, Freight DOUBLE);
CREATE INDEX ByCustomer ON Orders (Customer);
INSERT INTO Orders VALUES (10, 1, #1/15/2019#, 2.5);
INSERT INTO Orders VALUES (11, 2, #2/20/2019#, 4);
INSERT INTO Orders VALUES (12, 1, #5/5/2019#, Null);
INSERT INTO Orders VALUES (13, 3, #11/30/2019#, 1.25);
INSERT INTO Orders VALUES (14, 2, #1/2/2020#, 8);
INSERT INTO Orders VALUES (15, Null, #3/3/2020#, 16);

CREATE TABLE Lines (OrderId LONG, Item TEXT(20), Quantity LONG, Price CURRENCY);
CREATE INDEX ByOrder ON Lines (OrderId);
INSERT INTO Lines VALUES (10, 'duct', 2, 10.5);
INSERT INTO Lines VALUES (10, 'elbow', 4, 2.25);
INSERT INTO Lines VALUES (11, 'duct', 1, 10.5);
INSERT INTO Lines VALUES (12, 'valve', 3, 7);
INSERT INTO Lines VALUES (13, 'duct', 10, 9.75);
INSERT INTO Lines VALUES (13, 'tee', 5, 3.4);
INSERT INTO Lines VALUES (14, 'elbow', 6, 2.25);
INSERT INTO Lines VALUES (14, 'valve', 1, 7.5);
INSERT INTO Lines VALUES (15, 'tee', 2, Null);
